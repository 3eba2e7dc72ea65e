// The published curves, the reference tables, and what the gamma library makes of them.
#include <gtest/gtest.h>
#include <platform/gamma.h>

#include <cmath>
#include <random>

#include "gamma/matrix.h"
#include "proto/calc_curves.h"

namespace ZEPH_MCUC {
namespace {

GammaTable Hdr10(uint16_t peak, uint16_t ambient, uint8_t brightness, int32_t bits, uint8_t low,
                 uint8_t high) {
  GammaTable table{};
  HDR10GammaCalculation(peak, ambient, brightness, bits, low, high, table.data());
  return table;
}

GammaTable Hlg(uint8_t hlg_class) {
  GammaTable table{};
  HLGGammaCalculation(hlg_class, table.data());
  return table;
}

// The code at which `table` is no longer rising, or the number of codes.
std::size_t Falls(const GammaTable& table) {
  for (std::size_t code = 1; code < kGammaEntries; ++code) {
    if (GammaEntry(table, code) < GammaEntry(table, code - 1)) return code;
  }
  return kGammaEntries;
}

TEST(Curves, PassThroughThePublishedPoints) {
  const struct {
    double nits, signal;
  } kPq[] = {{100, 0.508078}, {1000, 0.751827}, {4000, 0.902572}, {10000, 1}};
  for (const auto& point : kPq) {
    EXPECT_NEAR(curves::PqSignal(point.nits / 10000), point.signal, 1e-6) << point.nits;
    EXPECT_NEAR(curves::PqLight(point.signal) * 10000, point.nits, point.nits * 1e-5);
  }
  EXPECT_DOUBLE_EQ(curves::HlgScene(0.5), 1.0 / 12);
  EXPECT_NEAR(curves::HlgLight(0.75, 4) * 1000, 203, 0.2);  // diffuse white
  EXPECT_EQ(curves::PqLight(0), 0);
}

TEST(Curves, ReferenceTablesHoldTheirGivenValues) {
  const struct {
    std::size_t code;
    uint16_t light;
  } kGiven[] = {{0, 0},        {75, 0},       {76, 1},       {128, 4},
                {256, 29},     {512, 198},    {1024, 1365},  {2048, 9461},
                {3072, 29391}, {4032, 62882}, {4094, 65535}, {4095, 65535}};
  for (const auto& given : kGiven) {
    EXPECT_EQ(GammaEntry(GammaTable_x(), given.code), given.light) << given.code;
  }
  EXPECT_EQ(Falls(GammaTable_x()), kGammaEntries);
  EXPECT_EQ(_PQEOTable().front(), 0.0F);
  EXPECT_EQ(_PQEOTable().back(), 65535.0F);
  EXPECT_NEAR(_PQEOTable()[2081], 65535 * 0.01, 1);  // 100 cd/m2
  // At the end of the square root the scene has a twelfth of its light.
  const double kExponents[] = {0.980390, 1.054357, 1.106824, 1.147524, 1.2, 1.247857, 1.296788};
  for (uint8_t mode = 0; mode < 7; ++mode) {
    const auto& table = HLGTempTableMode(mode);
    EXPECT_EQ(table.front(), 0);
    EXPECT_EQ(table.back(), 65535);
    const double below = 511.0 / 1023;
    EXPECT_EQ(table[511], std::floor(65535 * std::pow(below * below / 3, kExponents[mode])));
  }
  EXPECT_EQ(&HLGTempTableMode(200), &HLGTempTableMode(6));
}

TEST(Curves, PowerTableGoesFromDarkToFullInTheStepsOfItsSignal) {
  for (const int bits : {10, 12}) {
    const GammaTable table = PowerTable(2.2, bits);
    EXPECT_EQ(GammaEntry(table, 0), 0);
    EXPECT_EQ(GammaEntry(table, kGammaEntries - 1), 65535);
    EXPECT_EQ(Falls(table), kGammaEntries);
    const std::size_t step = std::size_t{1} << (12 - bits);
    EXPECT_EQ(GammaEntry(table, 2000), GammaEntry(table, 2000 + step - 1));
    EXPECT_LT(GammaEntry(table, 2000), GammaEntry(table, 2000 + step));
  }
}

TEST(Hdr10Table, RisesFromDarkToTheScreensEndForEverySetting) {
  for (const uint16_t peak : {0, 1, 30, 400, 1000, 4000, 9999, 10000, 65535}) {
    for (const uint16_t ambient : {0, 30, 2000, 65535}) {
      for (const int brightness : {0, 1, 50, 100, 255}) {
        for (const auto& [low, high] : {std::pair{0, 0}, {15, 140}, {255, 255}}) {
          const GammaTable table = Hdr10(peak, ambient, static_cast<uint8_t>(brightness), 10,
                                         static_cast<uint8_t>(low), static_cast<uint8_t>(high));
          SCOPED_TRACE(testing::Message()
                       << peak << ' ' << ambient << ' ' << brightness << ' ' << low << ' ' << high);
          EXPECT_EQ(Falls(table), kGammaEntries);
          EXPECT_EQ(GammaEntry(table, 0), 0);
          if (peak < 5000) {
            EXPECT_EQ(GammaEntry(table, 4095), 65535);
          }
        }
      }
    }
  }
}

// The published EOTF with its constants as decimal numbers.
double PublishedNits(double signal) {
  const double root = std::pow(signal, 1 / 78.84375);
  return 10000 * std::pow(std::max(root - 0.8359375, 0.0) / (18.8515625 - 18.6875 * root),
                          1 / 0.1593017578125);
}

TEST(Hdr10Table, ShowsTheLightOfTheCurveUpToTheKnee) {
  double worst = 0;
  for (const uint16_t peak : {400, 1000, 4000}) {
    const GammaTable table = Hdr10(peak, 0, 100, 10, 15, 140);
    const double top = curves::PqSignal(peak / 10000.0);
    const double knee = 1.5 * top - 0.5;
    for (std::size_t code = 0; static_cast<double>(code) / 4092 <= knee; ++code) {
      const double nits = PublishedNits(static_cast<double>(code) / 4092);
      worst = std::max(worst, std::abs(GammaEntry(table, code) - 65535 * nits / peak));
    }
  }
  EXPECT_LE(worst, 0.501);  // of an entry: only rounding
  RecordProperty("worst", std::to_string(worst));
}

TEST(Hdr10Table, IsTheReferenceCurveOnAScreenOfFullPeakAndDepth) {
  const GammaTable table = Hdr10(10000, 0, 100, 12, 15, 140);
  for (std::size_t code = 0; code < kGammaEntries; ++code) {
    EXPECT_NEAR(GammaEntry(table, code), _PQEOTable()[code], 0.51) << code;
  }
}

// The published roll-off, step by step as its text has it.
double PublishedRollOff(double e1, double maxLum) {
  const double ks = 1.5 * maxLum - 0.5;
  if (e1 < ks) return e1;
  const double t = (e1 - ks) / (1 - ks);
  return (2 * t * t * t - 3 * t * t + 1) * ks + (t * t * t - 2 * t * t + t) * (1 - ks) +
         (-2 * t * t * t + 3 * t * t) * maxLum;
}

TEST(Hdr10Table, RollsOffAsPublishedAtTheUsualHighGray) {
  for (const uint16_t peak : {400, 1000, 4000}) {
    const GammaTable table = Hdr10(peak, 0, 100, 10, 15, 140);
    const double top = curves::PqSignal(peak / 10000.0);
    for (std::size_t code = 0; code < 4093; code += 3) {
      const double nits = PublishedNits(PublishedRollOff(static_cast<double>(code) / 4092, top));
      EXPECT_NEAR(GammaEntry(table, code), std::min(65535 * nits / peak, 65535.0), 0.51) << code;
    }
  }
}

TEST(Hdr10Table, FollowsBrightnessRoomAndBothEffects) {
  const auto at = [](const GammaTable& table, std::size_t code) { return GammaEntry(table, code); };
  const GammaTable usual = Hdr10(1000, 30, 100, 10, 15, 140);
  EXPECT_EQ(Hdr10(1000, 30, 50, 10, 15, 140), Hdr10(500, 30, 100, 10, 15, 140));
  EXPECT_EQ(Hdr10(1000, 30, 0, 10, 15, 140), usual);  // cards that didn't answer
  EXPECT_GT(at(Hdr10(1000, 300, 100, 10, 15, 140), 500), at(usual, 500));
  EXPECT_GT(at(Hdr10(1000, 30, 100, 10, 60, 140), 500), at(usual, 500));
  EXPECT_EQ(Hdr10(1000, 30, 100, 10, 0, 140), Hdr10(1000, 0, 100, 10, 99, 140));
  EXPECT_LT(at(Hdr10(1000, 30, 100, 10, 15, 250), 2800), at(usual, 2800));  // an earlier knee
  EXPECT_EQ(at(Hdr10(1000, 0, 100, 10, 15, 0), 3090), 65535);               // clipped
  EXPECT_LT(at(usual, 3090), 60000);
}

TEST(HlgTable, IsTheReferenceOfItsClassAtEverySignal) {
  for (const uint8_t hlg_class : {0, 1, 2, 3, 4, 5, 6, 7, 255}) {
    const GammaTable table = Hlg(hlg_class);
    const auto& reference = HLGTempTableMode(hlg_class);
    for (std::size_t signal = 0; signal < reference.size(); ++signal) {
      EXPECT_EQ(GammaEntry(table, 4 * signal), reference[signal]) << int{hlg_class} << signal;
    }
    EXPECT_EQ(Falls(table), kGammaEntries);
    EXPECT_EQ(GammaEntry(table, 4095), 65535);
  }
}

// --- Colour matrices ---------------------------------------------------------------------------

using Colours = std::array<double, 3>;

std::array<uint8_t, 32> Block(COLORSPACECONVERT conversion, uint16_t saturation, uint16_t contrast,
                              uint16_t hue) {
  std::array<uint8_t, 32> block{};
  PictureQualityCalculation(conversion, saturation, contrast, hue, 0, block.data());
  return block;
}

int Signed(const std::array<uint8_t, 32>& block, std::size_t at) {
  return static_cast<int16_t>(block[at] | block[at + 1] << 8);
}

// What the FPGA makes of `in`, by the layout of the block.
Colours Apply(const std::array<uint8_t, 32>& block, const Colours& in) {
  Colours out{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      out[i] += Signed(block, 6 * i + 2 * j) / 2048.0 * (in[j] - Signed(block, 18 + 2 * j));
    }
    out[i] += Signed(block, 24 + 2 * i);
  }
  return out;
}

// The same pixel by pixel: to red, green, blue from 0 to 1, then to luma and colour difference,
// adjusted there, and back.
Colours SlowConvert(int conversion, const Colours& in, double saturation, double contrast,
                    double degrees) {
  const char* const kNames[] = {"FRFR", "FRLY", "FRFY", "FYFR", "LYFR",
                                "LYLY", "FYFY", "FYLY", "LYFY"};
  const char* const name = kNames[conversion];
  double y = 0;
  double b = 0;  // blue minus luma
  double r = 0;  // red minus luma
  if (name[1] == 'R') {
    y = (0.2126 * in[0] + 0.7152 * in[1] + 0.0722 * in[2]) / 4095;
    b = in[2] / 4095 - y;
    r = in[0] / 4095 - y;
  } else {
    const bool full = name[0] == 'F';
    y = full ? in[0] / 4095 : (in[0] - 256) / 3504;
    b = (in[1] - 2048) / (full ? 4095 : 3584) * 1.8556;
    r = (in[2] - 2048) / (full ? 4095 : 3584) * 1.5748;
  }
  const double turn = degrees * 3.14159265358979 / 180;
  const double cb = b / 1.8556;
  const double cr = r / 1.5748;
  y *= contrast;
  b = 1.8556 * contrast * saturation * (cb * std::cos(turn) - cr * std::sin(turn));
  r = 1.5748 * contrast * saturation * (cb * std::sin(turn) + cr * std::cos(turn));
  if (name[3] == 'R') {
    return {4095 * (y + r), 4095 * (y - (0.2126 * r + 0.0722 * b) / 0.7152), 4095 * (y + b)};
  }
  const bool full = name[2] == 'F';
  const double range = full ? 4095 : 3584;
  return {full ? 4095 * y : 256 + 3504 * y, 2048 + range * b / 1.8556, 2048 + range * r / 1.5748};
}

TEST(ColourMatrix, ConvertsPixelsAsTheLongWayDoes) {
  std::mt19937 random(9);
  const auto any = [&random](int most) {
    return std::uniform_int_distribution<int>(0, most)(random);
  };
  double worst = 0;
  for (int round = 0; round < 20000; ++round) {
    const int conversion = any(8);
    const int saturation = any(100);
    const int contrast = any(100);
    const int hue = any(719);
    const Colours in = {double(any(4095)), double(any(4095)), double(any(4095))};
    const Colours out =
        Apply(Block(static_cast<COLORSPACECONVERT>(conversion), static_cast<uint16_t>(saturation),
                    static_cast<uint16_t>(contrast), static_cast<uint16_t>(hue)),
              in);
    const Colours slow = SlowConvert(conversion, in, saturation / 50.0, contrast / 50.0, hue);
    for (std::size_t i = 0; i < 3; ++i) worst = std::max(worst, std::abs(out[i] - slow[i]));
  }
  EXPECT_LE(worst, 2.4);  // codes of 12 bits: up to half a unit in each of three coefficients
  RecordProperty("worst", std::to_string(worst));
}

TEST(ColourMatrix, OfNeutralValuesIsPinned) {
  const std::array<uint8_t, 32> kIdentity = {0x00, 0x08, 0, 0, 0, 0, 0, 0,    0x00,
                                             0x08, 0,    0, 0, 0, 0, 0, 0x00, 0x08};
  EXPECT_EQ(Block(FRtoFR, 50, 50, 0), kIdentity);
  // Limited luma 256 to 3760 and colours around 2048, to red, green and blue from 0 to 4095.
  const int kLimited[] = {2393, 0,   3685, 2393, -438, -1095, 2393, 4342,
                          0,    256, 2048, 2048, 0,    0,     0,    0};
  const auto block = Block(LYtoFR, 50, 50, 0);
  for (std::size_t i = 0; i < 16; ++i) EXPECT_EQ(Signed(block, 2 * i), kLimited[i]) << i;
}

TEST(ColourMatrix, ClampsWhatItCannotHoldAndTurnsHueAround) {
  for (int conversion = 0; conversion < 9; ++conversion) {
    const auto which = static_cast<COLORSPACECONVERT>(conversion);
    EXPECT_EQ(Block(which, 65535, 65535, 0), Block(which, 100, 100, 0));
    EXPECT_EQ(Block(which, 50, 50, 400), Block(which, 50, 50, 40));
    for (uint16_t hue = 0; hue < 360; ++hue) {
      const auto most = gamma_library::ConversionOf(which, 100, 100, hue);
      for (const auto& row : most.coefficient) {
        for (const double value : row) EXPECT_LT(std::abs(value), 15.99);
      }
    }
  }
  const auto dark = Block(LYtoFR, 50, 0, 0);
  EXPECT_EQ(Apply(dark, {3760, 3000, 100}), (Colours{0, 0, 0}));
  const auto gray = Apply(Block(FRtoFR, 0, 50, 0), {4095, 0, 0});
  EXPECT_EQ(gray[0], gray[1]);
  EXPECT_EQ(gray[1], gray[2]);
}

}  // namespace
}  // namespace ZEPH_MCUC
