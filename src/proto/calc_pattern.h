// The registers of the screen pattern generator and the phases that the FPGA wants. Pure, any
// thread.
//
// A client says where a pattern's first pixel lies on the screen. The FPGA counts from the screen's
// corner and wants to know how far into a pattern it stands there. An image of the registers holds
// both; values of two bytes are little-endian.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace ZEPH_MCUC::pattern {

inline constexpr uint32_t kBase = 0x12010000;  // register of the image's first byte
inline constexpr uint32_t kBus = 0xA00000;     // the same in the FPGA
inline constexpr uint32_t kUsed = 0x39;        // bytes of the image that mean something
inline constexpr uint32_t kSize = 0x3F;        // bytes that clients reach

// Offsets of the image.
inline constexpr uint32_t kWidth = 0x02;  // of the screen, taken from the FPGA
inline constexpr uint32_t kHeight = 0x04;
inline constexpr uint32_t kFirstPixelX = 0x0E;  // signed
inline constexpr uint32_t kFirstPixelY = 0x10;
inline constexpr uint32_t kStrobe = 0x1B;
inline constexpr uint32_t kType = 0x20;
inline constexpr uint32_t kPixelIntervalX = 0x21;
inline constexpr uint32_t kPixelIntervalY = 0x23;
inline constexpr uint32_t kPixelPhaseX = 0x25;
inline constexpr uint32_t kPixelPhaseY = 0x27;
inline constexpr uint32_t kBlockOffsetX = 0x2D;
inline constexpr uint32_t kBlockOffsetY = 0x2F;
inline constexpr uint32_t kBlockWidth = 0x31;
inline constexpr uint32_t kBlockHeight = 0x33;
inline constexpr uint32_t kBlockPhaseX = 0x35;
inline constexpr uint32_t kBlockPhaseY = 0x37;

// Values of the type; any other has no phases.
inline constexpr uint8_t kNone = 0;
inline constexpr uint8_t kPixels = 1;  // a pixel in each interval
inline constexpr uint8_t kBlocks = 2;

// Where the FPGA stands in a pattern on one axis.
struct Place {
  uint16_t offset = 0;  // whole blocks before the first one; blocks only
  uint16_t phase = 0;
  bool valid = true;  // false: no place for this position, and both are 0
};

// A pixel every `interval`, the first one at `first`, which must lie inside the first interval.
Place PlacePixels(int16_t first, uint16_t interval);

// Blocks of `size`, not 0, one of which begins at `first`. Before the corner it must reach over it.
Place PlaceBlocks(int16_t first, uint16_t size);

// What `SetPhases` found.
enum class Phases : uint8_t {
  kSet,         // set, or none to set
  kInvalid,     // an axis, or with pixels both, set to 0
  kEmptyBlock,  // a block of no width or height: nothing changed, and nothing is to be shown
};

// Sets the phases of the image's pattern.
Phases SetPhases(std::span<uint8_t, kUsed> image);

}  // namespace ZEPH_MCUC::pattern
