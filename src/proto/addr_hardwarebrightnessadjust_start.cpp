// The start of a plan, and the arming of its next node.
#include <vector>

#include "mcuctrace.h"
#include "process/calc_time.h"
#include "proto/addr_hardwarebrightnessadjust.h"

namespace ZEPH_MCUC {

using Brightness = Addr_HardWareBrightnessAdjust;

namespace {

using brightness::MixNode;

constexpr u8 kOfList = 0;
constexpr u8 kOfMix = 1;

// The start finds the node in force by itself.
void DropArrivals() {
  Brightness::RtcIntOccurArrived = DISABLE;
  Brightness::ProgrammableAdjustArrived = DISABLE;
}

void ArmNothing() { Brightness::INT_Once = brightness::kSpent; }

void StartList() {
  DropArrivals();
  Brightness::ProgrammableAdjustPartNum = brightness::ListCount(Brightness::TheImage());
  const brightness::Moment now = Brightness::Now();
  const u8 node = Brightness::CurrentTimeBelongToWhichNode(now.hour, now.minute);
  Brightness::Index = node;
  Brightness::RtcIndex = node;
  Brightness::ApplyListNode(node);
  Brightness::InsertInterruptTimeToQueue(kOfList);
}

void TakeHeader(const brightness::MixHeader& header) {
  Brightness::TimeNodeBaseAddr = header.nodes;
  Brightness::SensorInfoBaseAddr = header.sensors;
  Brightness::LuxMapBaseAddr = header.luxMap;
  Brightness::SensorValidBaseAddr = header.fallback;
  Brightness::SensorReadInterval = header.interval_s;
  Brightness::SensorReadTimes = header.readings;
}

// A mix without a start: it waits for a new table.
void WaitForTable() {
  ArmNothing();
  Brightness::MixAutoBriAdjustEnable = DISABLE;
  Brightness::BriBroadcastEnable = DISABLE;
  Brightness::BriBroadcastArrived = DISABLE;
}

std::vector<MixNode> NodesOfMix() {
  auto found = brightness::ReadNodes(Brightness::ReadArea, Brightness::TimeNodeBaseAddr);
  if (found.state != brightness::TableState::kThere) {
    Brightness::LogAbsent("table of nodes", found.state);
  }
  return std::move(found.table);
}

u16 FindNode(const std::vector<MixNode>& nodes, u8 hour, u8 minute) {
  const u16 node =
      brightness::MixNodeInForce(nodes, brightness::TimeKey(ToBcd(hour), ToBcd(minute)));
  if (node == brightness::kNoNode) MCUC_LOG(kLogError, "Find Node Fail !");
  return node;
}

void StartSensorNode() {
  Brightness::MixAutoBriAdjustEnable = ENABLE;
  Brightness::AutoBrightnessAdjustCnt = 0;
  Brightness::MixBriAdjOccured = 0;
  Brightness::SensorReadTimeCnt = 0;
}

void StartFixedNode(const MixNode& node) {
  const uint8_t value = brightness::FromPercent(node.percent);
  Brightness::MixAutoBriAdjustEnable = DISABLE;
  Brightness::SendBrightness(brightness::kAllPorts, value);
  Brightness::LastGlobalBri = value;
  Brightness::MixBriAdjOccured = 1;
  Brightness::BriBroadcastCnt = 0;
  Brightness::BriBroadcastEnable = ENABLE;
  Brightness::BriBroadcastArrived = DISABLE;
}

void StartNode(const MixNode& node, const brightness::Moment& now) {
  if (brightness::AppliesAtStart(node, now)) {
    node.sensor ? StartSensorNode() : StartFixedNode(node);
  } else if (node.valid == 1) {
    Brightness::MixBriAdjOccured = 0;
  }
}

void StartMix() {
  DropArrivals();
  TakeHeader(brightness::HeaderOf(Brightness::TheImage()));
  if (Brightness::SensorReadTimes > brightness::mix::kMostReadings) {
    MCUC_LOG(kLogError, "=== BrightnessAdjustInit ===an average of "
                            << Brightness::SensorReadTimes
                            << " readings, 16 at most: the mix is not started");
    WaitForTable();
    return;
  }
  const std::vector<MixNode> nodes = NodesOfMix();
  const brightness::Moment now = Brightness::Now();
  const u16 node = FindNode(nodes, now.hour, now.minute);
  Brightness::ProgrammableAdjustPartNum = static_cast<uint32_t>(nodes.size());
  Brightness::Index = node;
  Brightness::RtcIndex = node;
  if (node == brightness::kNoNode) {
    WaitForTable();
    return;
  }
  StartNode(nodes[node], now);
  Brightness::InsertInterruptTimeToQueue(kOfMix);
}

}  // namespace

constinit CMutexThreadRecursive Brightness::m_plan;

void Brightness::BrightnessAdjustInit() {
  const CMutexGuardT guard(m_plan);
  PlanChanges = PlanChanges + 1;
  if (ProgrammableAdjustEnable) {
    StartList();
  } else if (AutoBrightnessAdjustEnable) {
    AutoBrightnessAdjustCnt = 0;
  } else if (MixBrightnessAdjustEnable && MixBriAdjustControl) {
    StartMix();
  } else if (SerialCtrlScreenBlackEnable || HardwareCtrlAdjustEnable) {
    TIM2_PeriodCnt = 0;
  }
}

u8 Brightness::CurrentTimeBelongToWhichNode(u8 current_hour, u8 current_minute) {
  const brightness::Image image = TheImage();
  std::vector<uint16_t> keys;
  for (uint32_t i = 0; i < ProgrammableAdjustPartNum; ++i) {
    const brightness::ListNode node = brightness::ListNodeAt(image, i);
    keys.push_back(brightness::TimeKey(node.hour, node.minute));
  }
  return brightness::ListNodeInForce(
      keys, brightness::TimeKey(ToBcd(current_hour), ToBcd(current_minute)));
}

u16 Brightness::MixAdjCurrentTimeNode(u8 current_hour, u8 current_minute) {
  return FindNode(NodesOfMix(), current_hour, current_minute);
}

void Brightness::InsertInterruptTimeToQueue(u8 AdjustType) {
  const auto index = brightness::NextInRing(static_cast<uint32_t>(static_cast<int>(RtcIndex)),
                                            ProgrammableAdjustPartNum);
  RtcIndex = static_cast<int>(index);
  if (AdjustType == kOfMix) {
    const auto node = brightness::ReadNode(ReadArea, TimeNodeBaseAddr, index);
    if (node.state == brightness::TableState::kThere) {
      TimeIntHour = node.table.hour;
      TimeIntMin = node.table.minute;
    } else {
      LogAbsent("next node", node.state);
    }
  } else {
    const brightness::ListNode node = brightness::ListNodeAt(TheImage(), index);
    TimeIntHour = node.hour;
    TimeIntMin = node.minute;
  }
  INT_Once = brightness::kArmed;
}

u8 Brightness::NowTimeGetWeek() {
  const brightness::Moment now = Now();
  return WeekdayOf(now.year, now.month, now.day);
}

void Brightness::ApplyListNode(std::size_t node) {
  const brightness::Image image = TheImage();
  const brightness::ListNode values = brightness::ListNodeAt(image, node);
  for (uint8_t port = 0; port < brightness::list::kPortsDriven; ++port) {
    if ((values.ports >> port & 1) == 0) continue;
    SendBrightness(port, values.brightness);
    if (brightness::ListHasColours(image)) {
      AdjustCurrentComponentBrightness(port, values.red, values.green, values.blue,
                                       values.virtualRed);
    }
  }
}

}  // namespace ZEPH_MCUC
