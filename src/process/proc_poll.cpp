#include "process/proc_poll.h"

#include "proto/addr_hardwarebrightnessadjust.h"

namespace ZEPH_MCUC {

using Brightness = Addr_HardWareBrightnessAdjust;

namespace {

constexpr uint32_t kSecond = 5;  // passes
constexpr uint32_t kTwoSeconds = 10;
constexpr uint32_t kRound = 100;  // with the pass that starts over: 99 from one to the next
constexpr uint16_t kRepeat_s = 600;

// Counts one second; true where `period_s` of them are over, and the count starts again.
bool Over(vu16* count, uint16_t period_s) {
  const auto next = static_cast<uint16_t>(*count + 1);
  const bool over = next >= period_s;
  *count = over ? uint16_t{0} : next;
  return over;
}

}  // namespace

uint32_t Proc_Poll::m_TimesCnt = 0;
bool Proc_Poll::m_firstUp = true;

void Proc_Poll::TickSecond() {
  Brightness::SeiralComErrorProcess();
  if (Brightness::MixAutoBriAdjustEnable &&
      Over(&Brightness::SensorReadTimeCnt, Brightness::SensorReadInterval)) {
    Brightness::AutoBrightnessAdjustArrived = ENABLE;
  }
  if (Brightness::BriBroadcastEnable && Over(&Brightness::BriBroadcastCnt, kRepeat_s)) {
    Brightness::BriBroadcastArrived = ENABLE;
  }
}

void Proc_Poll::AutoBrightnessadjust() {
  if (m_firstUp) Brightness::UpdataBrightnessPara();
  m_firstUp = false;
  ++m_TimesCnt;
  if (m_TimesCnt % kSecond == 0) TickSecond();
  if (m_TimesCnt % kTwoSeconds == 0) Brightness::TimeToOver_Handler();
  if (m_TimesCnt >= kRound) {
    m_TimesCnt = 1;
    if (Brightness::AutoBrightnessAdjustEnable) Brightness::AutoBrightnessAdjustArrived = ENABLE;
  }
  if (m_TimesCnt % kSecond == 0) {
    Brightness::ProgrammableBrightnessAdjust();
    Brightness::AutoBrightnessAdjust();
    Brightness::MixBrightnessAdjust();
  }
}

}  // namespace ZEPH_MCUC
