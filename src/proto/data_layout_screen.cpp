// What a layout knows before it is calculated: the card's size and the screen's.
#include "driverutil.h"
#include "mcuctrace.h"
#include "proto/calc_feature.h"
#include "proto/data_common.h"
#include "proto/porttables.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint32_t kCardSizeRegister = 0x02000017;
constexpr uint8_t kModuleBits = 0xA0;   // of the optical module's byte: a module is there
constexpr uint8_t kModuleLinks = 0x0F;  // and it has a link
constexpr uint8_t kZeros[4] = {};

uint16_t Links(const Data_Global& data) {
  return static_cast<uint16_t>(data.GigaPhyLinkSta | data.Fiber1BelowLinkStatus_buff.u16(0) |
                               data.Fiber2BelowLinkStatus_buff.u16(0));
}

// The port to ask for its card's size; `kTablePorts` where none has a link.
std::size_t PortToAsk(const Data_Global& data) {
  const uint8_t module = data.OptModuleLinkSta;
  if ((module & kModuleBits) != 0 && (module & kModuleLinks) != 0) return 0;
  std::size_t port = 0;
  while (port < kTablePorts && (Links(data) >> port & 1) == 0) ++port;
  return port;
}

void ClearOffsets(Data_Global* data, const char* failure) {
  if (data->WriteFeatureBus(feature::kOffsetX, kZeros) < 0) MCUC_LOG(kLogError, failure);
}

// The screen's size at 0x1EC, copied to 0x24.
void SetScreen(Data_Global* data, uint16_t width, uint16_t height, uint16_t point,
               const char* text) {
  auto& reg = data->SendParameterReg;
  reg.setU16(feature::kScreenWidth, width);
  reg.setU16(feature::kScreenHeight, height);
  data->DebugForScreenZero(point, 0, text);
  reg.setU16(feature::kRealWidth, width);
  reg.setU16(feature::kRealHeight, height);
}

}  // namespace

int Data_Global::GetRecvCardSize_EnvNew() {
  OptModuleLinkSta = DriverUtil::getInstance()->FPGAC5_ReadOneWord(0, 0, feature::kFiberLink);
  const std::size_t port = PortToAsk(*this);
  if (port == kTablePorts) {
    if (Links(*this) == 0) ReceiveCardWidth = ReceiveCardHeight = kDefaultCardSize;
    return -1;
  }
  uint8_t size[4] = {};
  if (DriverUtil::getInstance()->ReadCardPara(kCardSizeRegister, static_cast<uint16_t>(port), 0,
                                              sizeof(size), size, RecvCard) != 0) {
    ReceiveCardWidth = ReceiveCardHeight = kDefaultCardSize;
    MCUC_LOG(kLogError, "=== Read receive card failed, return ====");
    return -1;
  }
  const auto width = static_cast<uint16_t>(size[0] | size[1] << 8);
  const auto height = static_cast<uint16_t>(size[2] | size[3] << 8);
  if (width == 0 || height == 0) {
    MCUC_LOG(kLogError, "=== Read receive card Fail, ReceiveCardWidth&Height 0 ====");
    return -1;
  }
  ReceiveCardWidth = width;
  ReceiveCardHeight = height;
  return 0;
}

void Data_Global::CalculateParaGetSreenSize(const SmartConfig& config) {
  ClearOffsets(
      this, "=== CalculateParaGetSreenSize ===Clear XY_Offset failed! When smart LED configure.");
  auto width = static_cast<uint16_t>(ReceiveCardWidth * config.columns);
  auto height = static_cast<uint16_t>(ReceiveCardHeight * config.rows);
  if (width == 0 || height == 0) width = height = kDefaultCardSize;
  ChangeOutScreenPara(width, height);
  SetScreen(this, width, height, 7, "CalculateParaGetSreenSize, calc screen!!");
  SaveParaToFlash(kSaveAll);
  const uint8_t size[] = {static_cast<uint8_t>(width), static_cast<uint8_t>(width >> 8),
                          static_cast<uint8_t>(height), static_cast<uint8_t>(height >> 8)};
  const int32_t result = WriteFeatureBus(feature::kScreenWidth, size);
  if (result < 0) {
    MCUC_LOG(
        kLogError,
        "=== CalculateParaGetSreenSize ===\n Write 0200_01EC to FPGA failed !!! ret = " << result);
  }
}

void Data_Global::AdvCalcParaGetSreenSize(const AdvancedPorts& ports) {
  ClearOffsets(this,
               "=== AdvCalcParaGetSreenSize ===Clear XY_Offset failed! When Advanced LED configure "
               "! ");
  const Extent screen = ScreenOfPorts(ports, {ReceiveCardWidth, ReceiveCardHeight});
  SetScreen(this, static_cast<uint16_t>(screen.width), static_cast<uint16_t>(screen.height), 8,
            "AdvCalcParaGetSreenSize, ADV calc screen!!");
  SaveParaToFlash(kSaveAll);
  ChangeOutScreenPara(screen.width, screen.height);
}

}  // namespace ZEPH_MCUC
