// The mode table and the timing formula, to the bit.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "process/cvt.h"
#include "process/cvt_modes.h"
#include "support/rounds.h"

namespace ZEPH_MCUC {
namespace {

using Words = std::array<uint32_t, 14>;
static_assert(sizeof(Words) == sizeof(cvt_mode));

// All fields by their bits.
Words BitsOf(const cvt_mode& mode) {
  Words words;
  std::memcpy(words.data(), &mode, sizeof(mode));
  return words;
}

cvt_mode Reduced(int width, int height, float freq) {
  cvt_mode mode{};
  EXPECT_TRUE(vert_refresh(width, height, freq, 0, 1, 0, 0, &mode));
  return mode;
}

TEST(Timing, ReducedBlankingOfKnownModes) {
  struct Case {
    int width, height;
    float freq;
    int hss, hse, hfl, vss, vse, vfl;
    int steps;  // of the clock
  };
  constexpr Case kCases[] = {
      {1920, 1080, 60, 1968, 2000, 2080, 1103, 1108, 1114, 139027},
      {1280, 1024, 75, 1328, 1360, 1440, 1047, 1054, 1061, 114587},
      {800, 600, 60, 848, 880, 960, 623, 627, 633, 36460},
      {1000, 1000, 60, 1048, 1080, 1160, 1023, 1033, 1039, 72314},
      {640, 480, 240, 688, 720, 800, 503, 507, 540, 103679},  // 60 lines of blanking
  };
  for (const Case& c : kCases) {
    const cvt_mode mode = Reduced(c.width, c.height, c.freq);
    const std::array got = {mode.hr, mode.hss, mode.hse, mode.hfl,
                            mode.vr, mode.vss, mode.vse, mode.vfl};
    EXPECT_EQ(got, (std::array{c.width, c.hss, c.hse, c.hfl, c.height, c.vss, c.vse, c.vfl}));
    EXPECT_EQ(mode.pclk, static_cast<float>(0.001F * static_cast<double>(c.steps))) << c.width;
    EXPECT_EQ(mode.v_freq, c.freq);
    EXPECT_NEAR(mode.real_v_rate, c.freq, 0.01);
  }
}

TEST(Timing, RefusesWhatHasNoTimeForItsLines) {
  constexpr float kInfinite = std::numeric_limits<float>::infinity();
  constexpr float kNone = std::numeric_limits<float>::quiet_NaN();
  struct Case {
    int width, height;
    float freq;
    int interlaced, reduced;
    bool possible;
  };
  constexpr Case kCases[] = {
      {1920, 1080, 0, 0, 1, false},
      {1920, 1080, kNone, 0, 0, false},
      {1920, 1080, kInfinite, 0, 0, false},
      {0, 1080, 60, 0, 1, false},
      {1920, 0, 60, 0, 0, false},
      {65536, 1080, 60, 0, 1, false},
      {1920, 1080, 2173.0F, 0, 1, true},
      {1920, 1080, 2173.91F, 0, 1, false},
      {1920, 65535, 2173.913F, 0, 1, false},  // a timing of more lines than can be counted
      {1920, 1080, 1817, 0, 0, true},
      {1920, 1080, 1818.19F, 0, 0, false},
      {1920, 1, 60, 1, 1, false},
      {1920, 1, 60, 1, 0, true},
      {65535, 65535, 655.35F, 0, 1, true},
      {1920, 1080, 1e-30F, 0, 1, true},
      {1920, 1080, 1e-44F, 0, 0, false},
  };
  for (const Case& c : kCases) {
    cvt_mode mode{};
    mode.hr = -1;
    EXPECT_EQ(vert_refresh(c.width, c.height, c.freq, c.interlaced, c.reduced, 0, 0, &mode),
              c.possible)
        << c.width << " " << c.height << " " << c.freq << " " << c.reduced;
    EXPECT_EQ(mode.hr, c.possible ? c.width : -1);
  }
}

struct Input {
  int width, height;
  float freq;
  bool interlaced, reduced, margins, film;
};

Input RandomInput(support::Random& random) {
  const bool common = random(0, 3) != 0;
  return {random(common ? 64 : 1, common ? 4096 : 65535),
          random(common ? 64 : 2, common ? 4096 : 65535),
          static_cast<float>(random(100, common ? 24000 : 180000) / 100.0),
          random.Flip(),
          random.Flip(),
          random.Flip(),
          random.Flip()};
}

// A change here means that a device of another make would get other timings.
TEST(Timing, SameToTheBitOnEveryMachine) {
  support::Random random(2);
  uint64_t hash = 0xCBF29CE484222325;
  for (int i = 0; i < 20000; ++i) {
    const Input in = RandomInput(random);
    cvt_mode mode{};
    ASSERT_TRUE(vert_refresh(in.width, in.height, in.freq, in.interlaced, in.reduced, in.margins,
                             in.film, &mode));
    for (const uint32_t word : BitsOf(mode)) hash = (hash ^ word) * 0x100000001B3;
  }
  EXPECT_EQ(hash, 770027605930431799U);
}

// In whole numbers: a rate is a whole number of hundredths here and exact as a float, so lines and
// clock follow without rounding; only where a step ends on a boundary may the float be one off.
TEST(Timing, ReducedBlankingFollowsFromWholeNumbers) {
  support::Random random(83);
  for (int i = support::Rounds(50000); i > 0; --i) {
    const int64_t width = random(64, 8192), height = random(64, 8192), quarters = random(40, 1200);
    const cvt_mode mode = Reduced(static_cast<int>(width), static_cast<int>(height),
                                  static_cast<float>(quarters) / 4);
    // 460 us of lines that share 1000000 us / rate - 460 us among them.
    const int64_t time = 4000000 - 460 * quarters;
    const int64_t lines =
        std::max(460 * quarters * height / time + 1, 23 + int64_t{mode.vse - mode.vss} + 6);
    ASSERT_NEAR(mode.vfl - height, lines, 460 * quarters * height % time == 0 ? 1 : 0);
    const double steps =
        static_cast<double>(quarters * mode.vfl * (width + 160)) / 4 / (1000000.0 * 0.001F);
    ASSERT_NEAR(mode.pclk / 0.001F, std::floor(steps), 1 + steps * 1e-7);
    ASSERT_LE(mode.real_v_rate, static_cast<float>(quarters) / 4 * 1.00001F);
  }
}

TEST(ModeTable, TakesTheFirstRowWithinFourTenthsOfAHertz) {
  struct Case {
    uint16_t width, height, rate_x10;
    EN_MODE_TYPE mode;
  };
  constexpr Case kCases[] = {
      {1920, 1080, 600, MD_1920X1080_60},   {1920, 1080, 596, MD_1920X1080_60},
      {1920, 1080, 604, MD_1920X1080_60},   {1920, 1080, 595, INVALID_MODE},
      {1920, 1080, 605, INVALID_MODE},      {1280, 768, 600, MD_1280X768_60},
      {1280, 768, 1200, MD_1280X768_120RB}, {1400, 1050, 600, MD_1400X1050_60RB},
      {1366, 768, 598, MD_1366X768_60},     {1360, 768, 600, MD_1360X768_60},
      {800, 600, 600, MD_800X600_60},       {800, 600, 500, MD_800X600_50},
      {3840, 2160, 600, MD_3840X2160_60},   {1080, 1920, 600, INVALID_MODE},
      {1919, 1080, 600, INVALID_MODE},      {0, 0, 0, INVALID_MODE},
      {65535, 65535, 6553, INVALID_MODE},
  };
  for (const Case& c : kCases) {
    EXPECT_EQ(FindMode(c.width, c.height, c.rate_x10), c.mode)
        << c.width << "x" << c.height << " " << c.rate_x10;
  }
}

// What a row shows: four count a part of the border as picture.
Resolution Shown(EN_MODE_TYPE mode, Resolution size) {
  switch (mode) {
    case MD_640X480_60:
    case MD_640X480_73:
      return {656, 496};
    case MD_800X600_72:
      return {784, 600};
    case MD_800X600_75:
      return {816, 600};
    default:
      return size;
  }
}

// The table against itself: totals and rate give the line rate, its name says size and rate.
TEST(ModeTable, RowsAgreeWithThemselves) {
  for (std::size_t i = 0; i < Modes().size(); ++i) {
    const mode_table_t& row = Modes()[i];
    const auto mode = static_cast<EN_MODE_TYPE>(i);
    const Resolution size = Resolutions()[row.en_res_idx];
    SCOPED_TRACE(ModeName(mode));
    const std::string name = "MD_" + std::to_string(size.width) + "X" + std::to_string(size.height);
    EXPECT_EQ(std::string(ModeName(mode)).rfind(name + "_", 0), 0U);
    const int named = std::atoi(ModeName(mode) + name.size() + 1);
    EXPECT_NEAR(row.v_freq / 10.0, named, 0.51);
    EXPECT_NEAR(row.h_freq, row.v_total * row.v_freq / 1000.0, 2);
    const Resolution shown = Shown(mode, size);
    EXPECT_EQ(row.h_total - row.h_blanking, shown.width);
    EXPECT_EQ(row.v_total - row.v_blanking, shown.height);
    EXPECT_GE(row.h_start, row.h_sync);
    EXPECT_GE(row.v_start, row.v_sync);
  }
  EXPECT_EQ(Modes().size(), 54U);
  EXPECT_STREQ(ModeName(INVALID_MODE), "INVALID_MODE");
}

}  // namespace
}  // namespace ZEPH_MCUC
