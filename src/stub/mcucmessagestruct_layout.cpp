#include "stub/mcucmessagestruct_layout.h"

#include <array>

namespace ZEPH_MCUC {
namespace {

constexpr uint16_t kSumSeed = 0x5555;
constexpr int32_t kSumStart = 2;  // the tag is not covered

}  // namespace

// Sixteen sums side by side, which compilers turn into vector additions. Each wraps at 16 bits, as
// the sum of them does, so none can overflow.
uint16_t FrameSum(const uint8_t* p, int32_t count) {
  std::array<uint16_t, 16> lanes{};
  constexpr auto kLanes = static_cast<int32_t>(lanes.size());
  int32_t at = 0;
  for (; at + kLanes <= count; at += kLanes) {
    for (std::size_t i = 0; i < lanes.size(); ++i) {
      lanes[i] = static_cast<uint16_t>(lanes[i] + p[static_cast<std::size_t>(at) + i]);
    }
  }
  uint32_t sum = kSumSeed;
  for (; at < count; ++at) sum += p[at];
  for (const uint16_t lane : lanes) sum += lane;
  return static_cast<uint16_t>(sum);
}

bool FrameSumIsRight(const uint8_t* p, int32_t length) {
  if (length < frame::kShortest) return false;
  const int32_t end = length - frame::kChecksumSize;
  return FrameSum(p + kSumStart, end - kSumStart) == DWQ_DECWD(p + end);
}

}  // namespace ZEPH_MCUC
