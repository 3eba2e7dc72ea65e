// The day of a plan: which node is in force, which comes next, when its time is reached. A list is
// one day long and forms a ring: the evening's node runs on through midnight. Pure; the time comes
// in as a value.
#pragma once

#include <cstdint>
#include <span>

#include "proto/calc_brightness_table.h"

namespace ZEPH_MCUC::brightness {

// A moment of the local clock, in plain numbers.
struct Moment {
  uint8_t year = 0;  // since 2000
  uint8_t month = 0;
  uint8_t day = 0;
  uint8_t hour = 0;
  uint8_t minute = 0;
  uint8_t second = 0;
  uint8_t weekday = 0;  // 1 for Sunday to 7 for Saturday

  bool operator==(const Moment&) const = default;
};

// Orders the times of a day; hour and minute are BCD.
constexpr uint16_t TimeKey(uint8_t hour, uint8_t minute) {
  return static_cast<uint16_t>(minute + (hour << 7));
}
uint16_t TimeKey(const Moment& now);

inline constexpr uint16_t kNoNode = 0xFFFF;

// The node of a list that is in force at `key`: the last one that has begun today, or before the
// first the list's last. In a list out of order the first rising pair around `key` counts, else the
// last node. 0 for an empty list.
uint8_t ListNodeInForce(std::span<const uint16_t> nodeKeys, uint16_t key);

// The same for a mix, among the nodes whose valid byte isn't 0; `kNoNode` where there is none.
// Weekdays play no part.
uint16_t MixNodeInForce(std::span<const MixNode> nodes, uint16_t key);

// The node behind `index` in a ring of `count`; the first where `index` lies in no such ring, as
// that of a longer list does when a shorter one has just taken its place.
constexpr uint32_t NextInRing(uint32_t index, uint32_t count) {
  return index + uint64_t{1} < count ? index + 1 : 0;
}

// A weekday mask's bit 0 is Sunday where a plan starts, and Monday where a node's time arrives.
bool AppliesAtStart(const MixNode& node, const Moment& now);
bool AppliesAtArrival(const MixNode& node, const Moment& now);

// Whether an armed time is still to come.
enum Arming : uint8_t {
  kReached = 0,
  kArmed = 1,
  kSpent = 2,  // reached already, or nothing was armed
};

// Looks at the clock once; to be done every 2 seconds. The armed minute is met in its first four
// seconds, once or twice, and reached once.
struct ArmedLook {
  uint8_t state;  // an `Arming`, to be kept
  bool met;
  bool reached;
};
ArmedLook LookAtArmed(uint8_t state, uint8_t hourBcd, uint8_t minuteBcd, const Moment& now);

}  // namespace ZEPH_MCUC::brightness
