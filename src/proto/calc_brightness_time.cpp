#include "proto/calc_brightness_time.h"

#include "process/calc_time.h"

namespace ZEPH_MCUC::brightness {
namespace {

constexpr uint8_t kLastSecondMet = 3;

bool HasBit(uint8_t mask, uint8_t weekday) {
  return weekday >= 1 && weekday <= 7 && (mask >> (weekday - 1) & 1) != 0;
}

}  // namespace

uint16_t TimeKey(const Moment& now) { return TimeKey(ToBcd(now.hour), ToBcd(now.minute)); }

uint8_t ListNodeInForce(std::span<const uint16_t> nodeKeys, uint16_t key) {
  if (nodeKeys.empty()) return 0;
  for (std::size_t i = 0; i + 1 < nodeKeys.size(); ++i) {
    if (nodeKeys[i] <= key && key < nodeKeys[i + 1]) return static_cast<uint8_t>(i);
  }
  return static_cast<uint8_t>(nodeKeys.size() - 1);
}

uint16_t MixNodeInForce(std::span<const MixNode> nodes, uint16_t key) {
  uint16_t last = kNoNode;
  uint16_t begun = kNoNode;
  bool ended = false;  // by the first valid node that is still to come
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    if (nodes[i].valid == 0) continue;
    last = static_cast<uint16_t>(i);
    ended = ended || key < TimeKey(nodes[i].hour, nodes[i].minute);
    if (!ended) begun = last;
  }
  return begun != kNoNode ? begun : last;
}

bool AppliesAtStart(const MixNode& node, const Moment& now) {
  return node.valid == 1 && HasBit(node.weekdays, now.weekday);
}

bool AppliesAtArrival(const MixNode& node, const Moment& now) {
  return node.valid == 1 && HasBit(node.weekdays, WeekdayOf(now.year, now.month, now.day));
}

ArmedLook LookAtArmed(uint8_t state, uint8_t hourBcd, uint8_t minuteBcd, const Moment& now) {
  ArmedLook look{state, false, false};
  look.met =
      ToBcd(now.hour) == hourBcd && ToBcd(now.minute) == minuteBcd && now.second <= kLastSecondMet;
  if (look.met) look.state = state == kArmed ? kReached : kSpent;
  look.reached = look.state == kReached;
  if (look.reached) look.state = kSpent;
  return look;
}

}  // namespace ZEPH_MCUC::brightness
