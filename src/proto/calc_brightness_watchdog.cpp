#include "proto/calc_brightness_watchdog.h"

#include <algorithm>

namespace ZEPH_MCUC::brightness {
namespace {

WatchStep StepForCards(bool alive, uint8_t silent, uint8_t limit) {
  const bool lost = silent > limit;
  if (alive) return {0, lost ? WatchAction::kShowScreen : WatchAction::kNone};
  if (lost) return {silent, WatchAction::kLoseScreen};
  return {static_cast<uint8_t>(silent + 1), WatchAction::kNone};
}

// The count rests two above the limit, so the mix starts once a silence. A count of one above is
// what a start without a stored limit leaves.
WatchStep StepForMix(bool alive, uint8_t silent, uint8_t limit) {
  const auto rest = static_cast<uint8_t>(limit + 2);
  if (alive) return {0, silent >= limit ? WatchAction::kStopMix : WatchAction::kNone};
  if (silent == limit) return {rest, WatchAction::kStartMix};
  if (silent == limit + 1) return {rest, WatchAction::kStartMixAtBoot};
  if (silent < rest) return {static_cast<uint8_t>(silent + 1), WatchAction::kNone};
  return {silent, WatchAction::kNone};
}

}  // namespace

WatchStep StepWatch(Watch watch, bool alive, uint8_t silent_s, uint8_t limit_s) {
  const uint8_t limit = std::min(limit_s, kMostSilence_s);
  switch (watch) {
    case Watch::kCards:
      return StepForCards(alive, silent_s, limit);
    case Watch::kMix:
      return StepForMix(alive, silent_s, limit);
    default:
      return {silent_s, WatchAction::kNone};
  }
}

}  // namespace ZEPH_MCUC::brightness
