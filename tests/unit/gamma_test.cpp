// The published curves, the reference tables, and what the gamma library makes of them.
#include <gtest/gtest.h>
#include <platform/gamma.h>

#include <cmath>

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

// A way there and the way back, over pixels of all kinds: what comes back is what went in.
TEST(ColourMatrix, ConversionsUndoEachOther) {
  constexpr std::pair<COLORSPACECONVERT, COLORSPACECONVERT> kWays[] = {
      {FRtoLY, LYtoFR}, {FRtoFY, FYtoFR}, {LYtoFY, FYtoLY}, {FRtoFR, FRtoFR}, {LYtoLY, FYtoFY}};
  for (const auto& [there, back] : kWays) {
    for (const Colours& in : {Colours{4095, 0, 0}, {0, 4095, 300}, {700, 2048, 3500}}) {
      const Colours out = Apply(Block(back, 50, 50, 0), Apply(Block(there, 50, 50, 0), in));
      for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(out[i], in[i], 3) << there << ' ' << i;
    }
  }
  // Through another kind of pixel to the same end.
  const Colours pixel = {3000, 1500, 2500};
  const Colours direct = Apply(Block(LYtoFR, 50, 50, 0), pixel);
  const Colours around = Apply(Block(FYtoFR, 50, 50, 0), Apply(Block(LYtoFY, 50, 50, 0), pixel));
  for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(direct[i], around[i], 4) << i;
}

TEST(ColourMatrix, SaturationContrastAndHueWorkOnLumaAndColourDifference) {
  // Luma 0.5, Cb 0.25, Cr -0.125; contrast 1.5 of all, saturation 0.8 of the colours, turned.
  const Colours in = {2047.5, 2048 + 4095 * 0.25, 2048 - 4095 * 0.125};
  const double angle = 30 * 3.14159265358979 / 180, gain = 1.5 * 0.8 * 4095;
  const double cb = 0.25 * std::cos(angle) + 0.125 * std::sin(angle);
  const double cr = 0.25 * std::sin(angle) - 0.125 * std::cos(angle);
  const Colours out = Apply(Block(FYtoFY, 40, 75, 30), in);
  EXPECT_NEAR(out[0], 1.5 * 2047.5, 2);
  EXPECT_NEAR(out[1], 2048 + gain * cb, 2);
  EXPECT_NEAR(out[2], 2048 + gain * cr, 2);
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
