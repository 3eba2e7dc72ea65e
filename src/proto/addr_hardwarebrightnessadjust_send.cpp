// The ways of a brightness to the cards.
#include "driverutil.h"
#include "proto/addr_hardwarebrightnessadjust.h"
#include "proto/calc_brightness_send.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {

using Brightness = Addr_HardWareBrightnessAdjust;

namespace {

constexpr uint32_t kPacketBuffer = 0x300000;
constexpr uint32_t kPacketControl = 0x100000;  // twice the port; one more sends the packet

// One packet at a time passes through the FPGA's buffer.
constinit CMutexThread g_packetBuffer;

}  // namespace

void Brightness::NewSendReceiveCardPara(u32 RegStartAddr, u8 PortAddr, u16 BoardAddr, u16 Num,
                                        const u8* data) {
  // A value that fails on its way is not repeated before the plan's next event.
  static_cast<void>(DriverUtil::getInstance()->SendCardPara(RegStartAddr, PortAddr, BoardAddr, Num,
                                                            data, RecvCard));
  if (RegStartAddr == brightness::kCardBrightness) {
    Data_Global::getInstance()->SendDatetoOWD(RegStartAddr, data, 1);
  }
}

void Brightness::SendBrightness(u8 port, u8 brightness) {
  NewSendReceiveCardPara(brightness::kCardBrightness, port, brightness::kAllBoards, 1, &brightness);
}

bool Brightness::SmartAdjustGlobalBrightness(u8 PortAddress, u8 CurrentBri, u8 TargetBri,
                                             int DelayMs) {
  return SmartAdjustGlobalBrightness(PortAddress, CurrentBri, TargetBri, DelayMs, PlanChanges);
}

bool Brightness::SmartAdjustGlobalBrightness(u8 PortAddress, u8 CurrentBri, u8 TargetBri,
                                             int DelayMs, uint32_t plan) {
  const bool gradual = GradualAdjustControl && CurrentBri != TargetBri;
  for (const uint8_t value : brightness::RampValues(CurrentBri, TargetBri, gradual)) {
    if (!UnderPlan(plan, [=] { SendBrightness(PortAddress, value); })) return false;
    if (gradual) Delay(DelayMs);
  }
  return PlanChanges == plan;
}

void Brightness::AdjustCurrentComponentBrightness(u8 PortAddress, u8 RBrightness, u8 GBrightness,
                                                  u8 BBrightness, u8 VRBrightness) {
  const auto frame =
      brightness::ColourFrame(PortAddress, {RBrightness, GBrightness, BBrightness, VRBrightness});
  const auto port = static_cast<uint8_t>(PortAddress * 2);
  DriverUtil* driver = DriverUtil::getInstance();
  const CMutexGuardT guard(g_packetBuffer);
  // A failed bus write is logged where it happens; the packet is then lost.
  driver->WriteFPGABusOneWord(kPacketControl, port);
  driver->WriteFPGABusBlock(kPacketBuffer, frame.data(), frame.size());
  driver->WriteFPGABusOneWord(kPacketControl, port + 1);
}

}  // namespace ZEPH_MCUC
