#include "proto/calc_pattern.h"

#include "stub/mcucmessagestruct_layout.h"

namespace ZEPH_MCUC::pattern {
namespace {

using Image = std::span<uint8_t, kUsed>;

int16_t Position(Image image, uint32_t at) { return static_cast<int16_t>(DWQ_DECWD(&image[at])); }

Phases SetPixels(Image image) {
  Place x = PlacePixels(Position(image, kFirstPixelX), DWQ_DECWD(&image[kPixelIntervalX]));
  Place y = PlacePixels(Position(image, kFirstPixelY), DWQ_DECWD(&image[kPixelIntervalY]));
  const bool valid = x.valid && y.valid;
  if (!valid) x = y = {};
  DWQ_ENCWD(&image[kPixelPhaseX], x.phase);
  DWQ_ENCWD(&image[kPixelPhaseY], y.phase);
  return valid ? Phases::kSet : Phases::kInvalid;
}

Phases SetBlocks(Image image) {
  const uint16_t width = DWQ_DECWD(&image[kBlockWidth]);
  const uint16_t height = DWQ_DECWD(&image[kBlockHeight]);
  if (width == 0 || height == 0) return Phases::kEmptyBlock;
  const Place x = PlaceBlocks(Position(image, kFirstPixelX), width);
  const Place y = PlaceBlocks(Position(image, kFirstPixelY), height);
  DWQ_ENCWD(&image[kBlockOffsetX], x.offset);
  DWQ_ENCWD(&image[kBlockOffsetY], y.offset);
  DWQ_ENCWD(&image[kBlockPhaseX], x.phase);
  DWQ_ENCWD(&image[kBlockPhaseY], y.phase);
  return x.valid && y.valid ? Phases::kSet : Phases::kInvalid;
}

}  // namespace

Place PlacePixels(int16_t first, uint16_t interval) {
  if (first < 0 || first >= interval) return {.valid = false};
  return {.phase = static_cast<uint16_t>((interval - first) % interval)};
}

Place PlaceBlocks(int16_t first, uint16_t size) {
  if (first < 0) {
    if (-first >= size) return {.valid = false};
    return {.phase = static_cast<uint16_t>(-first)};
  }
  return {.offset = static_cast<uint16_t>((size + first - 1) / size),
          .phase = static_cast<uint16_t>((size - first % size) % size)};
}

Phases SetPhases(std::span<uint8_t, kUsed> image) {
  switch (image[kType]) {
    case kPixels:
      return SetPixels(image);
    case kBlocks:
      return SetBlocks(image);
    default:
      return Phases::kSet;
  }
}

}  // namespace ZEPH_MCUC::pattern
