// A test pattern as the FPGA shows it: where on the screen its pixels or blocks lie.
//
// Pure: no cairo, any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "proto/calc_pattern.h"

namespace quivord::wall {

struct Pattern {
  enum class Kind { kPixels, kBlocks };

  Kind kind = Kind::kPixels;
  std::uint32_t firstX = 0;  // of the first pixel, or of the first block's left edge, on the screen
  std::uint32_t firstY = 0;
  std::uint32_t stepX = 1;  // to the next one
  std::uint32_t stepY = 1;

  bool operator==(const Pattern&) const = default;
};

// Understands the generator's registers. Nothing where it shows no pattern, or one of no size.
std::optional<Pattern> UnderstandPattern(
    std::span<const std::uint8_t, ZEPH_MCUC::pattern::kUsed> registers);

// "a pixel every 8 by 10, the first at 3, 4".
std::string PatternText(const Pattern& pattern);

}  // namespace quivord::wall
