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
      {1920, 1080, kNone, 0, 0, false},  {1920, 1080, kInfinite, 0, 0, false},
      {0, 1080, 60, 0, 1, false},        {1920, 0, 60, 0, 0, false},
      {1920, 1080, 2173.0F, 0, 1, true}, {1920, 1080, 2173.91F, 0, 1, false},
      {1920, 1080, 1817, 0, 0, true},    {1920, 1080, 1818.19F, 0, 0, false},
      {1920, 1, 60, 1, 1, false},        {1920, 1, 60, 1, 0, true},
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

}  // namespace
}  // namespace ZEPH_MCUC
