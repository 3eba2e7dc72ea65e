#include "wall/pattern.h"

#include "stub/mcucmessagestruct_layout.h"

namespace quivord::wall {
namespace {

namespace registers = ZEPH_MCUC::pattern;

std::string Pair(std::uint32_t x, const char* between, std::uint32_t y) {
  return std::to_string(x) + between + std::to_string(y);
}

}  // namespace

std::optional<Pattern> UnderstandPattern(std::span<const std::uint8_t, registers::kUsed> image) {
  const auto word = [image](std::uint32_t at) { return ZEPH_MCUC::DWQ_DECWD(&image[at]); };
  const bool blocks = image[registers::kType] == registers::kBlocks;
  if (!blocks && image[registers::kType] != registers::kPixels) return std::nullopt;
  Pattern pattern;
  pattern.kind = blocks ? Pattern::Kind::kBlocks : Pattern::Kind::kPixels;
  pattern.stepX = word(blocks ? registers::kBlockWidth : registers::kPixelIntervalX);
  pattern.stepY = word(blocks ? registers::kBlockHeight : registers::kPixelIntervalY);
  if (pattern.stepX == 0 || pattern.stepY == 0) return std::nullopt;
  const std::uint32_t phaseX = word(blocks ? registers::kBlockPhaseX : registers::kPixelPhaseX);
  const std::uint32_t phaseY = word(blocks ? registers::kBlockPhaseY : registers::kPixelPhaseY);
  // The FPGA starts at the corner, so far into a step.
  pattern.firstX = (pattern.stepX - phaseX % pattern.stepX) % pattern.stepX;
  pattern.firstY = (pattern.stepY - phaseY % pattern.stepY) % pattern.stepY;
  return pattern;
}

std::string PatternText(const Pattern& pattern) {
  const bool blocks = pattern.kind == Pattern::Kind::kBlocks;
  return std::string(blocks ? "blocks of " : "a pixel every ") +
         Pair(pattern.stepX, " by ", pattern.stepY) + ", the first at " +
         Pair(pattern.firstX, ", ", pattern.firstY);
}

}  // namespace quivord::wall
