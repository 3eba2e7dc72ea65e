#include "process/calc_edid.h"

#include <algorithm>
#include <numeric>

namespace ZEPH_MCUC {
namespace {

constexpr double kMostRate = 65535;

uint8_t Sum(std::span<const uint8_t> bytes) {
  return std::accumulate(bytes.begin(), bytes.end(), uint8_t{0}, [](uint8_t sum, uint8_t byte) {
    return static_cast<uint8_t>(sum + byte);
  });
}

}  // namespace

EdidFault VerifyEdid(EdidView image) {
  if (!std::equal(edid::kHeader.begin(), edid::kHeader.end(), image.begin())) {
    return EdidFault::kHeader;
  }
  for (std::size_t at = 0; at < edid::kSize; at += edid::kBlock) {
    const auto block = image.subspan(at, edid::kBlock);
    if (Sum(block) != 0) return EdidFault::kSum;
    if (block[edid::kExtensions] == 0) break;
  }
  return EdidFault::kNone;
}

uint8_t BlockSum(std::span<const uint8_t, edid::kBlock> block) {
  return static_cast<uint8_t>(-Sum(block.first<edid::kSum>()));
}

EdidFault BuildEdid(EdidView model, uint16_t width, uint16_t height, uint16_t rate,
                    EdidImage* out) {
  if (const EdidFault fault = VerifyEdid(model); fault != EdidFault::kNone) return fault;
  const auto chosen = ChooseTiming(width, height, rate);
  if (!chosen) return EdidFault::kNoTiming;
  std::copy(model.begin(), model.end(), out->begin());
  const Descriptor preferred = EncodeDescriptor(chosen->timing, TuneClock(chosen->timing, rate));
  std::copy(preferred.begin(), preferred.end(), out->begin() + edid::kPreferred);
  (*out)[edid::kSum] = BlockSum(std::span(*out).first<edid::kBlock>());
  return EdidFault::kNone;
}

std::optional<VideoMode> PreferredMode(std::span<const uint8_t, edid::kRead> image) {
  Descriptor bytes{};
  std::copy(image.begin() + edid::kPreferred, image.end(), bytes.begin());
  const DetailedTiming sent = DecodeDescriptor(bytes);
  const uint32_t clock = sent.PixelClock / kDescriptorClock_Hz;
  const double pixels = static_cast<double>(sent.vtotal()) * sent.htotal();
  if (sent.HorizActivePixels == 0 || sent.VertActiveLines == 0) return std::nullopt;
  const double rate = clock * 10000.0 / pixels * 100.0;
  if (rate > kMostRate) return std::nullopt;
  const VideoMode mode{sent.HorizActivePixels, sent.VertActiveLines, static_cast<uint16_t>(rate)};
  const auto chosen = ChooseTiming(mode.width, mode.height, mode.rate);
  if (!chosen || !FitsDescriptor(chosen->timing, TuneClock(chosen->timing, mode.rate))) {
    return std::nullopt;
  }
  return mode;
}

}  // namespace ZEPH_MCUC
