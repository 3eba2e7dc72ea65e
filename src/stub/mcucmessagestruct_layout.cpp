#include "stub/mcucmessagestruct_layout.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint16_t kSumSeed = 0x5555;
constexpr int32_t kSumStart = 2;  // the tag is not covered

}  // namespace

uint16_t FrameSum(const uint8_t* p, int32_t count) {
  uint32_t sum = kSumSeed;
  for (int32_t i = 0; i < count; ++i) sum += p[i];
  return static_cast<uint16_t>(sum);
}

bool FrameSumIsRight(const uint8_t* p, int32_t length) {
  if (length < frame::kShortest) return false;
  const int32_t end = length - frame::kChecksumSize;
  return FrameSum(p + kSumStart, end - kSumStart) == DWQ_DECWD(p + end);
}

}  // namespace ZEPH_MCUC
