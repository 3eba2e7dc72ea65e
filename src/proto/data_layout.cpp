// The wall's layout, as far as it joins cards, image and tables.
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

// The port to ask for its card's size, or `kTablePorts` where none is linked.
std::size_t PortToAsk(const Data_Global& data) {
  const uint32_t links = data.GigaPhyLinkSta | data.Fiber1BelowLinkStatus_buff.u16(0) |
                         data.Fiber2BelowLinkStatus_buff.u16(0);
  const uint8_t module = data.OptModuleLinkSta;
  if ((module & kModuleBits) != 0 && (module & kModuleLinks) != 0) return 0;
  std::size_t port = 0;
  while (port < kTablePorts && (links >> port & 1) == 0) ++port;
  return port;
}

bool AnyLink(const Data_Global& data) {
  return data.GigaPhyLinkSta != 0 || data.Fiber1BelowLinkStatus_buff.u16(0) != 0 ||
         data.Fiber2BelowLinkStatus_buff.u16(0) != 0;
}

}  // namespace

int Data_Global::GetRecvCardSize_EnvNew() {
  OptModuleLinkSta = DriverUtil::getInstance()->FPGAC5_ReadOneWord(0, 0, feature::kFiberLink);
  const std::size_t port = PortToAsk(*this);
  if (port == kTablePorts) {
    if (!AnyLink(*this)) ReceiveCardWidth = ReceiveCardHeight = kDefaultCardSize;
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

}  // namespace ZEPH_MCUC
