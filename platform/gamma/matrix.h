// Colour conversion with saturation, contrast and hue, and the FPGA's block of 32 bytes for it.
//
// The FPGA calculates, for each colour of a pixel in 12-bit codes:
//
//   out[i] = sum over j of coefficient[i][j] * (in[j] - before[j]) + behind[i]
//
// The block, all values signed, 16 bits, low byte first:
//
//   0 to 17    coefficient[0][0], [0][1], … [2][2] in units of 1 / 2048, so -16 up to below 16
//   18 to 23   before[0] to [2], in codes
//   24 to 29   behind[0] to [2], in codes
//   30, 31     0
//
// Colours are red, green, blue or Y, Cb, Cr, by the ITU-R BT.709 primaries. Pure, any thread.
#pragma once

#include <platform/gamma.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace gamma_library {

inline constexpr std::size_t kBlockSize = 32;
inline constexpr int kCoefficientUnit = 2048;

struct Conversion {
  std::array<std::array<double, 3>, 3> coefficient{};
  std::array<int16_t, 3> before{};
  std::array<int16_t, 3> behind{};
};

// Saturation and contrast are 0 to 100; 50 leaves things as they are, 100 doubles. Contrast scales
// from black up. Hue turns colours by so many degrees. Values beyond 100 count as 100, hues beyond
// 359 go on around the circle. A number that is no conversion counts as `FRtoFR`.
Conversion ConversionOf(COLORSPACECONVERT conversion, uint16_t saturation, uint16_t contrast,
                        uint16_t hue);

void WriteBlock(const Conversion& conversion, std::span<uint8_t, kBlockSize> block);

}  // namespace gamma_library
