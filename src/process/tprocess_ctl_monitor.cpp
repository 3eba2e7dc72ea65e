// The preview window follows the source: nobody polls this yet.
#include "driverutil.h"
#include "process/PwvConfig.h"
#include "process/tprocess_ctl.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint32_t kSourceValid = 0x17;
constexpr uint32_t kSourceSize = 0x46;
constexpr uint8_t kValid = 1;
constexpr Pos_T kWindow{1920, 1080};
constexpr RegisterImage kSizeImage{&Pos_T::Width, &Pos_T::Height};

}  // namespace

void Tprocess_ctl::Monitorprcoess() {
  static Pos_T Lastsource_pos{0, 0};
  DriverUtil* driver = DriverUtil::getInstance();
  if (driver->FPGAC5_ReadOneWord(0, 0, kSourceValid) != kValid) return;
  std::array<uint8_t, kSizeImage.kSize> bytes{};
  if (driver->FPGAC5_ReadDataBlock(0, 0, kSourceSize, bytes.size(), bytes.data()) < 0) return;
  const Pos_T source_pos = kSizeImage.Unpack(bytes);
  if (source_pos == Lastsource_pos) return;
  PvwWindowsUpdate(source_pos, kWindow);
  Lastsource_pos = source_pos;  // a size that can't be shown isn't tried again either
}

}  // namespace ZEPH_MCUC
