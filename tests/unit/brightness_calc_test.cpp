// The brightness calculations that are more than what a plan on a board shows, by tables of cases.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "proto/calc_brightness_lux.h"
#include "proto/calc_brightness_time.h"
#include "proto/calc_brightness_watchdog.h"

namespace {

using namespace ZEPH_MCUC;
using namespace ZEPH_MCUC::brightness;

TEST(BrightnessTime, ReachesAnArmedMinuteOnce) {
  struct Case {
    std::vector<std::array<uint8_t, 3>> clock;
    int reached, left;
  };
  const Case kCases[] = {
      {{{12, 0, 2}, {12, 0, 3}}, 1, kSpent},
      {{{12, 0, 0}}, 1, kSpent},
      {{{12, 0, 4}}, 0, kArmed},
      {{{11, 59, 59}, {12, 0, 1}, {12, 0, 3}, {12, 0, 5}}, 1, kSpent},
      {{{12, 1, 0}, {0, 0, 0}}, 0, kArmed},
  };
  for (const Case& c : kCases) {
    uint8_t state = kArmed;
    int reached = 0;
    for (const auto& [hour, minute, second] : c.clock) {
      const ArmedLook look = LookAtArmed(state, 0x12, 0x00, {26, 5, 1, hour, minute, second, 6});
      state = look.state;
      reached += look.reached ? 1 : 0;
    }
    EXPECT_EQ(reached, c.reached);
    EXPECT_EQ(state, c.left);
  }
  EXPECT_FALSE(LookAtArmed(kSpent, 0, 0, {}).reached) << "nothing was armed";
  EXPECT_EQ(NextInRing(1, 3), 2U);
  EXPECT_EQ(NextInRing(7, 3), 0U) << "a ring that has become shorter";
}

TEST(BrightnessLux, AveragesWithoutTheSmallestAndTheLargest) {
  constexpr uint16_t kBad = 0xFFFF;
  const std::pair<std::vector<uint16_t>, int> kCases[] = {
      {{60, 10, 50, 20, 40, 30}, 35},
      {{10, kBad}, 10},
      {{10, 20, kBad}, 20},
      {{10, 21}, 15},
      {{kBad}, -1},
      {{1, kBad, kBad}, -1},
      {{kBad, kBad, kBad, kBad}, -1},
      {{}, -1},
      {{kBad - 1, 65534, 65534}, 65534},
      {{5, kBad, kBad, 9, 7}, 8},
  };
  for (auto [readings, average] : kCases) {
    const auto found = TrimmedAverage(readings);
    EXPECT_EQ(found ? int{*found} : -1, average) << readings.size();
  }
}

// What a map says at some lux; -1 for nothing.
using Points = std::vector<std::pair<uint16_t, int>>;

TEST(BrightnessLux, LooksUpARangeByItsSteps) {
  const std::pair<LuxRange, Points> kCases[] = {
      {{1000, 0, 255, 10, 10}, {{500, 132}, {499, 108}, {999, 230}, {0, 10}, {1000, 255}}},
      {{1100, 100, 255, 10, 10}, {{199, 10}, {200, 34}, {65534, 255}}},
      {{1000, 0, 10, 255, 10}, {{500, 133}}},  // a falling range, cut towards 0
      {{1000, 0, 255, 10, 0}, {{500, -1}}},
      {{1000, 0, 255, 10, 33}, {{500, -1}}},
      {{1000, 0, 255, 10, 32}, {{995, 255}}},            // 31 lux a step leave a gap below 1000
      {{20, 0, 255, 10, 32}, {{5, 255}}},                // less than a lux a step
      {{100, 900, 200, 20, 4}, {{500, 200}, {50, 20}}},  // upside down
  };
  for (const auto& [range, points] : kCases) {
    for (const auto& [lux, value] : points) {
      const auto found = LookUpRange(range, lux);
      EXPECT_EQ(found ? int{*found} : -1, value) << lux;
    }
  }
}

TEST(BrightnessLux, LooksUpAMapByStraightLines) {
  const std::pair<std::vector<LuxItem>, Points> kCases[] = {
      {{{100, 20}, {200, 60}},
       {{150, 40}, {149, 39}, {151, 40}, {100, 20}, {50, 20}, {250, 60}, {60001, 60}}},
      {{{100, 0}, {200, 100}, {600, 50}, {700, 60}}, {{690, 59}, {599, 100}}},
      {{{100, 60}, {200, 20}}, {{150, 60}}},  // falling: the left end
      {{{100, 20}, {100, 50}, {200, 60}}, {{150, 55}}},
      {{{50, 0}, {100, 20}, {100, 50}, {200, 60}}, {{100, 20}}},
      {{{7, 33}}, {{1, 33}, {9, 33}}},
      {{}, {{9, -1}}},
      {std::vector<LuxItem>(33), {{9, -1}}},
      {{{0, 0}, {65535, 100}}, {{60000, 91}, {60001, 100}}},
  };
  for (const auto& [map, points] : kCases) {
    for (const auto& [lux, percent] : points) {
      const auto found = LookUpMap(map, lux);
      EXPECT_EQ(found ? int{*found} : -1, percent) << lux;
    }
  }
}

// The actions of `passes` passes: B and S for the screen lost and shown, M and X for the mix
// started and stopped, a dot for nothing.
std::string Watched(Watch watch, const std::string& heard, uint8_t limit, uint8_t silent = 0) {
  constexpr char kLetters[] = {'.', 'S', 'B', 'X', 'M', 'M'};
  std::string actions;
  for (const char pass : heard) {
    const WatchStep step = StepWatch(watch, pass == '!', silent, limit);
    silent = step.silent_s;
    actions += kLetters[static_cast<std::size_t>(step.action)];
  }
  return actions + " " + std::to_string(silent);
}

TEST(BrightnessWatch, ActsWhenTheLinkFallsSilent) {
  const std::string forty(40, '-');
  const std::string quiet(40, '.');
  EXPECT_EQ(Watched(Watch::kCards, forty + "----!-", 40), quiet + ".BBBS. 1");
  EXPECT_EQ(Watched(Watch::kCards, forty + "--", 40), quiet + ".B 41");
  EXPECT_EQ(Watched(Watch::kMix, forty + "-----!-", 40), quiet + "M....X. 1");
  EXPECT_EQ(Watched(Watch::kMix, forty + "--", 40), quiet + "M. 42");
  EXPECT_EQ(Watched(Watch::kMix, "---!", 40, 41), "M..X 0");  // no limit is stored
  EXPECT_EQ(Watched(Watch::kMix, "--!-", 40), std::string("....") + " 1");
  EXPECT_EQ(Watched(Watch::kNobody, "-!-", 40, 9), "... 9");
  // The longest limits: the count neither wraps nor fires twice.
  const std::string mix = Watched(Watch::kMix, std::string(600, '-'), 255);
  EXPECT_EQ(std::ranges::count(mix, 'M'), 1);
  EXPECT_EQ(Watched(Watch::kCards, std::string(256, '-'), 255).substr(253), ".BB 254");
}

}  // namespace
