// The watch over an outside device's serial link, one pass a second. Pure.
#pragma once

#include <cstdint>

namespace ZEPH_MCUC::brightness {

// Who acts when the link falls silent.
enum class Watch : uint8_t {
  kNobody,
  kCards,  // they are told that the link is lost, and when it is back
  kMix,    // it takes over until the link is back
};

enum class WatchAction : uint8_t {
  kNone,
  kShowScreen,      // the link is back: tell the cards
  kLoseScreen,      // the link is lost: tell the cards
  kStopMix,         // the link is back: the device has the last word again
  kStartMix,        // the link has just fallen silent
  kStartMixAtBoot,  // no limit is stored: the mix starts without waiting
};

// The longest silence that the count can pass; a longer limit counts as this.
inline constexpr uint8_t kMostSilence_s = 253;

struct WatchStep {
  uint8_t silent_s;  // seconds of silence, to be kept
  WatchAction action;
};

// One second: `alive` tells whether the device was heard since the last one, `silent_s` what the
// last step gave, `limit_s` how much silence is borne.
WatchStep StepWatch(Watch watch, bool alive, uint8_t silent_s, uint8_t limit_s);

}  // namespace ZEPH_MCUC::brightness
