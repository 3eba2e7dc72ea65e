// The EDID that a source is shown: a base image with the wanted mode as its preferred timing; and
// what is taken over from an EDID that a client sends, which is that timing alone.
//
// Pure; any thread. Rates are in units of 0.01 Hz.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "process/calc_edid_timing.h"

namespace ZEPH_MCUC {

// A base block (VESA E-EDID) and one extension (CEA-861), each closed by a byte that makes its sum
// 0 modulo 256.
namespace edid {
inline constexpr std::size_t kSize = 256;
inline constexpr std::size_t kBlock = 128;
inline constexpr std::size_t kPreferred = 54;    // the first detailed timing of a block
inline constexpr std::size_t kExtensions = 126;  // of a block: how many follow
inline constexpr std::size_t kSum = 127;
inline constexpr std::size_t kRead = 62;  // bytes of a client's EDID that count
inline constexpr std::array<uint8_t, 8> kHeader = {0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0};
}  // namespace edid

using EdidImage = std::array<uint8_t, edid::kSize>;
using EdidView = std::span<const uint8_t, edid::kSize>;

enum class EdidFault : uint8_t {
  kNone,
  kHeader,
  kSum,
  kNoTiming,  // the mode has none
};

// The first fault in header and sums. A block that says that none follows is the last one looked
// at.
EdidFault VerifyEdid(EdidView image);

// The byte that closes a block.
uint8_t BlockSum(std::span<const uint8_t, edid::kBlock> block);

// `model` with the mode as its first timing, into `out`. A fault leaves `out` as it was.
[[nodiscard]] EdidFault BuildEdid(EdidView model, uint16_t width, uint16_t height, uint16_t rate,
                                  EdidImage* out);

struct VideoMode {
  uint16_t width;
  uint16_t height;
  uint16_t rate;
  bool operator==(const VideoMode&) const = default;
};

// The mode that a client's EDID prefers; only the front of its first timing is looked at. None
// where that is no timing, or where the device's own timing for the mode doesn't fit a descriptor.
std::optional<VideoMode> PreferredMode(std::span<const uint8_t, edid::kRead> image);

}  // namespace ZEPH_MCUC
