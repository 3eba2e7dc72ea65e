#include "proto/addr_intelligentbrightnessregister.h"

#include "driverutil.h"
#include "mcuctrace.h"
#include "proto/calc_brightness_send.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint32_t kPortSelect = 0x100;  // twice the port; 0 sends the packet
constexpr uint32_t kPacket = 0x400;
constexpr uint8_t kPorts = 10;  // a sender's mask has bits for the first eight only
constexpr int kPause_ms = 5;

}  // namespace

std::span<const RowFunction> Addr_IntelligentBrightnessRegister::RowFunctions() {
  static constexpr RowFunction kRows[] = {DoIntellBrightSentByScreen};
  return kRows;
}

JSHL_Type_e Addr_IntelligentBrightnessRegister::DoIntellBrightSentByScreen(QMB_proto3rd* msg,
                                                                           Fshl_cmd* /*row*/,
                                                                           int /*flag*/) {
  return space::Dispatch(msg, ReadFromIntellBrightSentByScreen, WriteToIntellBrightSentByScreen);
}

JSHL_Type_e Addr_IntelligentBrightnessRegister::ReadFromIntellBrightSentByScreen(
    QMB_proto3rd* /*msg*/) {
  return JSHL_OK;
}

JSHL_Type_e Addr_IntelligentBrightnessRegister::WriteToIntellBrightSentByScreen(QMB_proto3rd* msg) {
  if (space::Offset(kIntelligentBrightnessSpace, *msg) != 0) return JSHL_OK;
  const brightness::ScreenSent sent = brightness::ScreenSentOf(msg->proto.m_data);
  for (const auto& sender : sent.senders) {
    MCUC_LOG(kLogInfo, "brightness sent by screen: sender " << sender.address << " ports "
                                                            << CTrace::hex << sender.ports);
    for (uint8_t port = 0; port < kPorts; ++port) {
      if ((sender.ports >> port & 1) == 0) continue;
      AdjustCurrentGlobalBrightness(port, sent.brightness);
      Delay(kPause_ms);
    }
  }
  return JSHL_OK;
}

int32_t Addr_IntelligentBrightnessRegister::AdjustCurrentGlobalBrightness(
    uint8_t portAddress, uint8_t globalBrightness) {
  const auto frame = brightness::BrightnessFrame(portAddress, globalBrightness);
  DriverUtil* driver = DriverUtil::getInstance();
  driver->WriteFPGABusOneWord(kPortSelect, static_cast<uint8_t>(portAddress * 2));
  const int32_t result = driver->WriteFPGABusBlock(kPacket, frame.data(), frame.size());
  if (result < 0) {
    MCUC_LOG(kLogError, "===  ===write bytes to fpga failed. driverRet = " << result);
  }
  return driver->WriteFPGABusOneWord(kPortSelect, 0);
}

}  // namespace ZEPH_MCUC
