#include "gamma/matrix.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "stub/mcucmessagestruct_layout.h"

namespace gamma_library {
namespace {

using Matrix = std::array<std::array<double, 3>, 3>;

// How a kind of pixel stands in 12-bit codes: where its zeros are and how far a whole goes.
struct Pixel {
  bool yuv;
  int16_t zero;  // of red, green, blue, or Y
  double whole;
  double colours;  // a whole of Cb and Cr, which have their zero in the middle
};
constexpr int16_t kMiddle = 2048;
constexpr Pixel kFullRgb{false, 0, 4095, 4095};
constexpr Pixel kFullYuv{true, 0, 4095, 4095};
constexpr Pixel kLimitedYuv{true, 256, 3504, 3584};

struct Ends {
  Pixel from;
  Pixel to;
};
constexpr std::array<Ends, 9> kEnds = {{
    {kFullRgb, kFullRgb},
    {kFullRgb, kLimitedYuv},
    {kFullRgb, kFullYuv},
    {kFullYuv, kFullRgb},
    {kLimitedYuv, kFullRgb},
    {kLimitedYuv, kLimitedYuv},
    {kFullYuv, kFullYuv},
    {kFullYuv, kLimitedYuv},
    {kLimitedYuv, kFullYuv},
}};

// ITU-R BT.709: the shares of red, green and blue in Y; Cb and Cr reach from -0.5 to 0.5.
constexpr double kRed = 0.2126;
constexpr double kBlue = 0.0722;
constexpr double kGreen = 1 - kRed - kBlue;
constexpr double kCb = 2 * (1 - kBlue);
constexpr double kCr = 2 * (1 - kRed);

constexpr Matrix kYuvOfRgb = {{
    {kRed, kGreen, kBlue},
    {-kRed / kCb, -kGreen / kCb, 0.5},
    {0.5, -kGreen / kCr, -kBlue / kCr},
}};
constexpr Matrix kRgbOfYuv = {{
    {1, 0, kCr},
    {1, -kCb* kBlue / kGreen, -kCr* kRed / kGreen},
    {1, kCb, 0},
}};

constexpr Matrix Diagonal(double a, double b, double c) {
  return {{{a, 0, 0}, {0, b, 0}, {0, 0, c}}};
}

Matrix operator*(const Matrix& a, const Matrix& b) {
  Matrix product{};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      for (int k = 0; k < 3; ++k) product[i][j] += a[i][k] * b[k][j];
    }
  }
  return product;
}

Matrix DecodePixel(const Pixel& pixel) {
  const double colours = 1 / pixel.colours;
  const Matrix scale = Diagonal(1 / pixel.whole, colours, colours);
  return pixel.yuv ? scale : kYuvOfRgb * scale;
}

Matrix EncodePixel(const Pixel& pixel) {
  const Matrix scale = Diagonal(pixel.whole, pixel.colours, pixel.colours);
  return pixel.yuv ? scale : scale * kRgbOfYuv;
}

std::array<int16_t, 3> Zeros(const Pixel& pixel) {
  const int16_t colours = pixel.yuv ? kMiddle : pixel.zero;
  return {pixel.zero, colours, colours};
}

// On Y, Cb and Cr.
Matrix Adjustment(uint16_t saturation, uint16_t contrast, uint16_t hue) {
  constexpr uint16_t kMost = 100;
  constexpr double kNeutral = 50;
  const double gain = std::min(contrast, kMost) / kNeutral;
  const double colours = gain * std::min(saturation, kMost) / kNeutral;
  const double angle = hue % 360 * std::numbers::pi / 180;
  const double along = colours * std::cos(angle);
  const double across = colours * std::sin(angle);
  return {{{gain, 0, 0}, {0, along, -across}, {0, across, along}}};
}

}  // namespace

Conversion ConversionOf(COLORSPACECONVERT conversion, uint16_t saturation, uint16_t contrast,
                        uint16_t hue) {
  const auto index = static_cast<std::size_t>(conversion);
  const Ends& ends = kEnds[index < kEnds.size() ? index : 0];
  return {.coefficient =
              EncodePixel(ends.to) * Adjustment(saturation, contrast, hue) * DecodePixel(ends.from),
          .before = Zeros(ends.from),
          .behind = Zeros(ends.to)};
}

void WriteBlock(const Conversion& conversion, std::span<uint8_t, kBlockSize> block) {
  std::fill(block.begin(), block.end(), uint8_t{0});
  uint8_t* at = block.data();
  const auto put = [&at](long value) {
    ZEPH_MCUC::DWQ_ENCWD(at, static_cast<uint16_t>(value));
    at += 2;
  };
  for (const auto& row : conversion.coefficient) {
    for (const double value : row) put(std::lround(value * kCoefficientUnit));
  }
  for (const int16_t code : conversion.before) put(code);
  for (const int16_t code : conversion.behind) put(code);
}

}  // namespace gamma_library
