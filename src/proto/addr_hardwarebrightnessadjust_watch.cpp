// The watch over an outside device that controls the brightness.
#include "mcuctrace.h"
#include "proto/addr_hardwarebrightnessadjust.h"
#include "proto/calc_brightness_watchdog.h"

namespace ZEPH_MCUC {

using Brightness = Addr_HardWareBrightnessAdjust;

namespace {

using brightness::WatchAction;

void TellCards(uint8_t screen) {
  Brightness::NewSendReceiveCardPara(brightness::kCardScreen, brightness::kAllPorts,
                                     brightness::kAllBoards, 1, &screen);
}

void StartMixInstead() {
  Brightness::MixBrightnessAdjustEnable = ENABLE;
  Brightness::BrightnessAdjustInit();
}

void Act(WatchAction action) {
  switch (action) {
    case WatchAction::kShowScreen:
      MCUC_LOG(kLogInfo, "=============== SeiralComErrorProcess TimeOut Black==================");
      TellCards(brightness::kScreenShown);
      break;
    case WatchAction::kLoseScreen:
      TellCards(brightness::kScreenLost);
      break;
    case WatchAction::kStopMix:
      MCUC_LOG(kLogInfo, "=============== SeiralComErrorProcess TimeOut DISABLE==================");
      Brightness::MixBrightnessAdjustEnable = DISABLE;
      Brightness::MixAutoBriAdjustEnable = DISABLE;
      break;
    case WatchAction::kStartMix:
      MCUC_LOG(kLogInfo, "=============== SeiralComErrorProcess Adj==================");
      StartMixInstead();
      break;
    case WatchAction::kStartMixAtBoot:
      MCUC_LOG(kLogInfo, "=============== SeiralComErrorProcess TimeOut Adjust ==================");
      StartMixInstead();
      break;
    case WatchAction::kNone:
      break;
  }
}

}  // namespace

void Brightness::SeiralComErrorProcess() {
  const CMutexGuardT guard(m_plan);
  using brightness::Watch;
  const bool alive = DevComLinkState != 0;
  const Watch watch = SerialCtrlScreenBlackEnable ? Watch::kCards
                      : HardwareCtrlAdjustEnable  ? Watch::kMix
                                                  : Watch::kNobody;
  const auto step = brightness::StepWatch(watch, alive, TIM2_PeriodCnt, UartDiscOvertime);
  TIM2_PeriodCnt = step.silent_s;
  Act(step.action);
  if (alive) DevComLinkState = 0;
}

}  // namespace ZEPH_MCUC
