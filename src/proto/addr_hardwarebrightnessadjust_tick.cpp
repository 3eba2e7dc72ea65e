// What the ticks of the polling loop do for the plan in force.
#include <algorithm>
#include <optional>

#include "mcuctrace.h"
#include "proto/addr_hardwarebrightnessadjust.h"
#include "proto/calc_brightness_lux.h"

namespace ZEPH_MCUC {

using Brightness = Addr_HardWareBrightnessAdjust;

namespace {

constexpr u8 kReadingsOfSensorMode = 6;  // for one average
constexpr u8 kFaultsBorne = 2;           // failed readings in a row, in the mix
constexpr int kRampStep_ms = 50;
constexpr u8 kDone = 1;  // what the sensor functions give
constexpr u8 kAveraged = 0;

// Marks the armed node as due where the clock has reached it and `plan` is in force.
void TakeArrival(const Brightness::Flag& plan) {
  if (!Brightness::RtcIntOccurArrived || !plan) return;
  Brightness::RtcIntOccurArrived = DISABLE;
  Brightness::ProgrammableAdjustArrived = ENABLE;
}

// Brings the mix to `percent`, by a ramp where it has a value to start from. False where another
// plan than `plan` has started, or all were stopped: what there is to remember is then theirs.
bool GoTo(u8 percent, uint32_t plan) {
  const u8 value = brightness::FromPercent(percent);
  // Without a value to start from there is no way to go gradually.
  const u8 from = Brightness::MixBriAdjOccured != 0 ? u8{Brightness::LastGlobalBri} : value;
  return Brightness::SmartAdjustGlobalBrightness(brightness::kAllPorts, from, value, kRampStep_ms,
                                                 plan) &&
         Brightness::UnderPlan(plan, [=] {
           Brightness::MixBriAdjOccured = 1;
           Brightness::LastGlobalBri = value;
         });
}

void ArriveAtSensorNode() {
  Brightness::BriBroadcastEnable = DISABLE;
  Brightness::MixAutoBriAdjustEnable = ENABLE;
  Brightness::AutoBrightnessAdjustCnt = 0;
  Brightness::SensorReadTimeCnt = 0;
  Brightness::BriBroadcastArrived = DISABLE;
}

void StartRepeats() {
  Brightness::BriBroadcastCnt = 0;
  Brightness::BriBroadcastEnable = ENABLE;
  Brightness::BriBroadcastArrived = DISABLE;
}

bool MixRuns() { return Brightness::MixBrightnessAdjustEnable && Brightness::MixBriAdjustControl; }

void ArmNext() { Brightness::InsertInterruptTimeToQueue(1); }

// Takes over the mix's node that is due, as far as that takes no time. The brightness to go to, if
// there is one. A node that doesn't apply today leaves the screen as it is, and the ring moves on.
std::optional<u8> TakeDueNode() {
  TakeArrival(Brightness::MixBrightnessAdjustEnable);
  if (!Brightness::ProgrammableAdjustArrived || !MixRuns()) return std::nullopt;
  Brightness::ProgrammableAdjustArrived = DISABLE;
  const auto index = static_cast<uint32_t>(static_cast<int>(Brightness::RtcIndex));
  const auto node = brightness::ReadNode(Brightness::ReadArea, Brightness::TimeNodeBaseAddr, index);
  if (node.state != brightness::TableState::kThere) {
    Brightness::LogAbsent("node that is due", node.state);
  } else if (brightness::AppliesAtArrival(node.table, Brightness::Now())) {
    if (!node.table.sensor) {
      Brightness::MixAutoBriAdjustEnable = DISABLE;
      Brightness::AutoBrightnessAdjustCnt = 0;
      return node.table.percent;
    }
    ArriveAtSensorNode();
  }
  ArmNext();
  return std::nullopt;
}

void ArriveInMix() {
  uint32_t plan = 0;
  std::optional<u8> percent;
  {
    const CMutexGuardT guard(Brightness::m_plan);
    plan = Brightness::PlanChanges;
    percent = TakeDueNode();
  }
  if (!percent || !GoTo(*percent, plan)) return;  // another plan has armed a node of its own
  Brightness::UnderPlan(plan, [] {
    StartRepeats();
    ArmNext();
  });
}

// The average of the first `count` readings collected so far, which it uses up.
u8 AverageOfReadings(u8 count, u16& average) {
  std::array<u16, brightness::mix::kMostReadings> readings{};
  for (u8 i = 0; i < count; ++i) readings[i] = Brightness::AutoBrightnessReadValTable[i];
  Brightness::AutoBrightnessAdjustCnt = 0;
  return Brightness::SortAndAverage(readings.data(), count, average);
}

// Where the next reading goes. The table is as long as the longest average.
u8 NextSlot() {
  const u8 slot = Brightness::AutoBrightnessAdjustCnt;
  return slot < brightness::mix::kMostReadings ? slot : 0;
}

void TakeReadingOfSensorMode(u16 lux) {
  const u8 slot = NextSlot();
  Brightness::AutoBrightnessReadValTable[slot] = lux;
  Brightness::AutoBrightnessAdjustCnt = static_cast<u8>(slot + 1);
  u16 average = 0;
  u8 value = 0;
  if (slot + 1 >= kReadingsOfSensorMode &&
      AverageOfReadings(kReadingsOfSensorMode, average) == kAveraged &&
      Brightness::LuxToBrightnessLookupTable(average, value) == kDone) {
    Brightness::SendBrightness(brightness::kAllPorts, value);
  }
}

u8 ReadingsOfMix() { return std::max<u8>(Brightness::SensorReadTimes, 1); }

// The two below give the brightness to go to, if there is one now.
std::optional<u8> TakeReading(u8 slot, u16 lux) {
  Brightness::SensorReadFaultCnt = 0;
  Brightness::AutoBrightnessReadValTable[slot] = lux;
  const auto count = static_cast<u8>(slot + 1);
  Brightness::AutoBrightnessAdjustCnt = count;
  if (count < ReadingsOfMix()) return std::nullopt;
  u16 average = 0;
  u8 percent = 0;
  const bool found = AverageOfReadings(count, average) == kAveraged &&
                     Brightness::MixAdjLuxToBriLookupTable(average, percent) == kDone;
  return found ? std::optional(percent) : std::nullopt;
}

std::optional<u8> MissReading(u8 slot) {
  auto& readings = Brightness::AutoBrightnessReadValTable;
  const auto next = static_cast<u8>(slot + 1 < ReadingsOfMix() ? slot + 1 : 0);
  // Nothing that an earlier average left in the table may count in place of what was missed.
  readings[slot] = brightness::kNoReading;
  readings[next] = brightness::kNoReading;
  Brightness::AutoBrightnessAdjustCnt = next;
  const auto faults = static_cast<u8>(Brightness::SensorReadFaultCnt + 1);
  Brightness::SensorReadFaultCnt = faults;
  if (faults <= kFaultsBorne) return std::nullopt;
  Brightness::SensorReadFaultCnt = 0;
  Brightness::AutoBrightnessAdjustCnt = 0;
  u8 percent = 0;
  return Brightness::MixAdjFallback(percent) == kDone ? std::optional(percent) : std::nullopt;
}

void ReadSensorsInMix() {
  const uint32_t plan = Brightness::PlanChanges;
  if (!Brightness::AutoBrightnessAdjustArrived || !Brightness::MixAutoBriAdjustEnable ||
      !Brightness::MixBriAdjustControl) {
    return;
  }
  u16 lux = 0;
  const bool read = Brightness::GetMixAdjAverageLux(lux) == kDone;
  std::optional<u8> percent;
  Brightness::UnderPlan(plan, [&] {
    const u8 slot = NextSlot();
    percent = read ? TakeReading(slot, lux) : MissReading(slot);
  });
  if (percent) GoTo(*percent, plan);
  Brightness::AutoBrightnessAdjustArrived = DISABLE;
}

// A card that was plugged in since a fixed brightness was sent learns it.
void RepeatInMix() {
  const CMutexGuardT guard(Brightness::m_plan);
  if (!Brightness::BriBroadcastArrived) return;
  Brightness::BriBroadcastArrived = DISABLE;
  if (MixRuns()) Brightness::SendBrightness(brightness::kAllPorts, Brightness::LastGlobalBri);
}

}  // namespace

void Brightness::TimeToOver_Handler() {
  const CMutexGuardT guard(m_plan);
  const auto look = brightness::LookAtArmed(INT_Once, TimeIntHour, TimeIntMin, Now());
  if (look.met) {
    MCUC_LOG(kLogInfo,
             "*********************** Brightness TIME INT Comming ***********************");
  }
  INT_Once = look.state;
  if (!look.reached) return;
  MCUC_LOG(kLogInfo,
           "**********************Brightness Times Gone Node:" << static_cast<int>(RtcIndex));
  RtcIntOccurArrived = ENABLE;
}

void Brightness::ProgrammableBrightnessAdjust() {
  const CMutexGuardT guard(m_plan);
  TakeArrival(ProgrammableAdjustEnable);
  if (!ProgrammableAdjustArrived || !ProgrammableAdjustEnable) return;
  ProgrammableAdjustArrived = DISABLE;
  ApplyListNode(static_cast<std::size_t>(static_cast<int>(RtcIndex)));
  InsertInterruptTimeToQueue(0);
}

void Brightness::AutoBrightnessAdjust() {
  const uint32_t plan = PlanChanges;
  if (!AutoBrightnessAdjustArrived || !AutoBrightnessAdjustEnable) return;
  u16 lux = 0;
  const bool read = GetAverageLuxOneTime(lux) == kDone;
  UnderPlan(plan, [=] {
    if (read) TakeReadingOfSensorMode(lux);
  });
  AutoBrightnessAdjustArrived = DISABLE;
}

void Brightness::MixBrightnessAdjust() {
  ArriveInMix();
  ReadSensorsInMix();
  RepeatInMix();
}

}  // namespace ZEPH_MCUC
