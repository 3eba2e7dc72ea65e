// A test pattern into the FPGA.
#include <array>

#include "driverutil.h"
#include "mcuctrace.h"
#include "proto/calc_feature.h"
#include "proto/calc_pattern.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {
namespace {

using PatternImage = std::array<uint8_t, pattern::kUsed>;

// The size of the screen as the FPGA has it; a size that can't be read stays.
void TakeScreenSize(PatternImage* image) {
  DriverUtil* driver = DriverUtil::getInstance();
  driver->FPGAC5_ReadDataBlock(0, 0, feature::kSetWidth, 2, &(*image)[pattern::kWidth]);
  driver->FPGAC5_ReadDataBlock(0, 0, feature::kRealHeight, 2, &(*image)[pattern::kHeight]);
}

void Send(const PatternImage& image, uint32_t begin, uint32_t end) {
  DriverUtil::getInstance()->FPGAC5_WriteDataBlock(0, 0, pattern::kBus + begin, end - begin,
                                                   &image[begin]);
}

// A pulse, once all else is in place.
void Strobe() {
  constexpr uint8_t kHigh = 0xA8;
  constexpr uint8_t kLow = 0;
  DriverUtil* driver = DriverUtil::getInstance();
  driver->FPGAC5_WriteOneWord(0, 0, pattern::kBus + pattern::kStrobe, kHigh);
  Delay(1);
  driver->FPGAC5_WriteOneWord(0, 0, pattern::kBus + pattern::kStrobe, kLow);
}

}  // namespace

void Data_Global::ScreenPatternGenProcess(SharedBytes<512>* gHardwareScreenGenReg) {
  PatternImage image = gHardwareScreenGenReg->snapshot<pattern::kUsed>(0);
  TakeScreenSize(&image);
  const pattern::Phases phases = pattern::SetPhases(image);
  if (phases == pattern::Phases::kEmptyBlock) {
    MCUC_LOG(kLogError, "=== ScreenPatternGenProcess ===block of no width or height, not sent");
    return;
  }
  if (phases == pattern::Phases::kInvalid) {
    MCUC_LOG(kLogError, "negative offset or out of range, invalid parameter");
  }
  image[pattern::kStrobe] = 0;  // as the pulse leaves it
  gHardwareScreenGenReg->write(0, image);
  Send(image, 0, pattern::kStrobe);
  Send(image, pattern::kStrobe + 1, pattern::kUsed);
  Strobe();
}

}  // namespace ZEPH_MCUC
