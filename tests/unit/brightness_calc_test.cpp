// The brightness calculations, by tables of cases and against second, slower forms.
#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <numeric>

#include "proto/calc_brightness_lux.h"
#include "proto/calc_brightness_send.h"
#include "proto/calc_brightness_table.h"
#include "proto/calc_brightness_time.h"
#include "proto/calc_brightness_watchdog.h"
#include "support/brightness_bytes.h"

namespace {

using namespace ZEPH_MCUC;
using namespace ZEPH_MCUC::brightness;
using Data = std::vector<uint8_t>;

uint16_t Key(int hour, int minute) {
  return TimeKey(static_cast<uint8_t>(brightness_bytes::Bcd(hour)),
                 static_cast<uint8_t>(brightness_bytes::Bcd(minute)));
}

MixNode At(int hour, int minute, uint8_t valid = 1) {
  MixNode node;
  node.hour = static_cast<uint8_t>(brightness_bytes::Bcd(hour));
  node.minute = static_cast<uint8_t>(brightness_bytes::Bcd(minute));
  node.valid = valid;
  return node;
}

TEST(BrightnessTime, FindsTheNodeOfAListInForce) {
  struct Case {
    std::vector<uint16_t> keys;
    int hour, minute, node;
  };
  const std::vector<uint16_t> day = {Key(8, 0), Key(12, 0), Key(20, 0)};
  const std::vector<uint16_t> unordered = {Key(20, 0), Key(8, 0), Key(12, 0)};
  const Case kCases[] = {
      {day, 7, 59, 2},      {day, 8, 0, 0},        {day, 11, 59, 0}, {day, 12, 0, 1},
      {day, 20, 0, 2},      {day, 23, 59, 2},      {day, 0, 0, 2},   {{Key(12, 0)}, 3, 0, 0},
      {unordered, 9, 0, 1}, {unordered, 21, 0, 2}, {{}, 1, 0, 0},
  };
  for (const Case& c : kCases) {
    EXPECT_EQ(ListNodeInForce(c.keys, Key(c.hour, c.minute)), c.node) << c.hour << ":" << c.minute;
  }
}

TEST(BrightnessTime, FindsTheNodeOfAMixInForce) {
  struct Case {
    std::vector<MixNode> nodes;
    std::vector<std::pair<int, int>> inForce;  // hour, node
  };
  const Case kCases[] = {
      {{At(8, 0), At(12, 0, 0), At(20, 0)}, {{13, 0}, {7, 2}, {8, 0}, {20, 2}}},
      {{At(8, 0, 0), At(9, 0, 7)}, {{3, 1}}},  // any valid byte but 0 counts here
      {{At(8, 0, 0), At(9, 0, 0)}, {{10, kNoNode}}},
      {{}, {{10, kNoNode}}},
      {{At(8, 0), At(6, 0), At(10, 0)}, {{7, 2}}},  // the first that is to come ends the search
  };
  for (const Case& c : kCases) {
    for (const auto& [hour, node] : c.inForce) {
      EXPECT_EQ(MixNodeInForce(c.nodes, Key(hour, 0)), node) << hour;
    }
  }
}

TEST(BrightnessTime, CountsWeekdaysFromSundayAtAStartAndFromMondayAtAnArrival) {
  std::time_t day = 946684800;  // the first of January 2000
  for (int i = 0; i < 36525; ++i, day += 86400) {
    tm date{};
    gmtime_r(&day, &date);
    const Moment now{.year = static_cast<uint8_t>(date.tm_year - 100),
                     .month = static_cast<uint8_t>(date.tm_mon + 1),
                     .day = static_cast<uint8_t>(date.tm_mday),
                     .weekday = static_cast<uint8_t>(date.tm_wday + 1)};
    for (int bit = 0; bit < 7; ++bit) {
      MixNode node = At(0, 0);
      node.weekdays = static_cast<uint8_t>(1 << bit);
      ASSERT_EQ(AppliesAtStart(node, now), bit == date.tm_wday) << i;
      ASSERT_EQ(AppliesAtArrival(node, now), bit == (date.tm_wday + 6) % 7) << i;
      node.valid = 2;
      ASSERT_FALSE(AppliesAtStart(node, now) || AppliesAtArrival(node, now)) << i;
    }
  }
}

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
  EXPECT_EQ(NextInRing(2, 3), 0U);
  EXPECT_EQ(NextInRing(0, 1), 0U);
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

TEST(BrightnessLux, ReadsASensorsReply) {
  struct Case {
    std::array<uint8_t, 5> reply;
    std::optional<uint16_t> lux;
  };
  constexpr Case kCases[] = {
      {{1, 2, 0x81, 0x00, 0}, 512}, {{1, 2, 0x01, 0x00, 0}, {}},     {{0, 2, 0x81, 0x00, 0}, {}},
      {{1, 0, 0x81, 0x00, 0}, {}},  {{1, 2, 0xFF, 0xFF, 0}, 0xFFFE}, {{1, 2, 0x80, 0x03, 9}, 6},
  };
  for (const Case& c : kCases) EXPECT_EQ(LuxOfReply(c.reply), c.lux);
  EXPECT_EQ(SensorRequest(3),
            (std::array<uint8_t, 11>{3, 0, 0, 0, 0x55, 0xAA, 1, 2, 0x80, 0xFF, 0x81}));
}

TEST(BrightnessSend, RampsOneByOne) {
  EXPECT_EQ(RampValues(10, 7, true), (Data{9, 8, 7}));
  EXPECT_EQ(RampValues(7, 10, false), (Data{10}));
  EXPECT_EQ(RampValues(7, 7, true), (Data{7}));
  Data whole(255);
  std::iota(whole.begin(), whole.end(), uint8_t{1});
  EXPECT_EQ(RampValues(0, 255, true), whole);
  EXPECT_EQ(FromPercent(100), 255);
  EXPECT_EQ(FromPercent(50), 127);
  EXPECT_EQ(FromPercent(30), 76);
  EXPECT_EQ(FromPercent(201), 255);
}

TEST(BrightnessSend, TakesFromAScreenNoMoreSendersThanItHolds) {
  struct Case {
    Data data;
    std::vector<uint8_t> ports;  // of each sender
  };
  const Case kCases[] = {
      {{200, 2, 0, 7, 0, 0x03, 0, 8, 0, 0x04, 0}, {0x03, 0x04}},
      {{200, 9, 9, 7, 0, 0x03, 0, 8, 0}, {0x03}},
      {{200, 1, 0, 7, 0, 0x03}, {0x03}},
      {{200, 0, 0, 7, 0, 0x03, 0}, {}},
      {{200, 1, 0}, {}},
      {{}, {}},
  };
  for (const Case& c : kCases) {
    const ScreenSent sent = ScreenSentOf(c.data);
    std::vector<uint8_t> ports;
    for (const auto& sender : sent.senders) ports.push_back(sender.ports);
    EXPECT_EQ(ports, c.ports);
    EXPECT_EQ(sent.brightness, c.data.size() > 3 ? 200 : 0);
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

// --- Tables

// A reader of `bytes`, the rest of the area zeros; it fails from offset `broken` on.
AreaReader Over(const Data& bytes, uint32_t broken = UINT32_MAX) {
  return [bytes, broken](uint32_t offset, std::span<uint8_t> into) {
    EXPECT_LE(offset + into.size(), kAreaSize) << "asked for bytes past the area";
    if (offset + into.size() > broken) return false;
    for (std::size_t i = 0; i < into.size(); ++i) {
      into[i] = offset + i < bytes.size() ? bytes[offset + i] : 0;
    }
    return true;
  };
}

TEST(BrightnessTable, ReadsWhatAFileHolds) {
  brightness_bytes::Mix mix;
  mix.nodes = {{8, 5, true, 0x7F, 12}, {23, 59, false, 0x21, 100, 0}};
  mix.sensors = {{0, 3, 0x102, 4}};
  mix.map = {{0x1234, 56}};
  mix.fallback = 30;
  mix.interval_s = 300;
  const Data bytes = mix.Bytes();
  Image image{};
  std::copy(bytes.begin(), bytes.end(), image.begin());
  const MixHeader header = HeaderOf(image);
  EXPECT_EQ(header, (MixHeader{static_cast<uint16_t>(bytes.size()), 18 + 33, 18, 18 + 33 + 9,
                               18 + 33 + 9 + 4, true, 300, 1, true, true}));
  const AreaReader read = Over(bytes);
  const std::vector<MixNode> nodes = {{0x08, 0x05, true, 0x7F, 12, 1},
                                      {0x23, 0x59, false, 0x21, 100, 0}};
  EXPECT_EQ(ReadNodes(read, header.nodes).table, nodes);
  EXPECT_EQ(ReadNode(read, header.nodes, 1).table, nodes[1]);
  EXPECT_EQ(ReadSensors(read, header.sensors).table, (std::vector<Sensor>{{0, 3, 0x102, 4}}));
  EXPECT_EQ(ReadLuxMap(read, header.luxMap).table, (std::vector<LuxItem>{{0x1234, 56}}));
  EXPECT_EQ(ReadFallback(read, header.fallback).table, (Fallback{true, 30}));
}

TEST(BrightnessTable, HasNothingThatDoesNotFit) {
  const auto at = [](uint32_t base, uint8_t count) {
    Data bytes(kAreaSize);
    if (base < kAreaSize) bytes[base] = count;
    return bytes;
  };
  using enum TableState;
  struct Case {
    uint16_t base;
    uint8_t count;
    TableState nodes, sensors, map;
  };
  const Case kCases[] = {
      {0x13FF, 0, kOutside, kThere, kCount},  // no nodes are read as one
      {0x13FF, 1, kOutside, kOutside, kOutside},     {0x1400, 0, kOutside, kOutside, kOutside},
      {0xFFFF, 1, kOutside, kOutside, kOutside},     {0x1400 - 17, 1, kThere, kThere, kThere},
      {0x1400 - 16, 1, kOutside, kThere, kThere},    {0x1400 - 65, 8, kOutside, kThere, kThere},
      {0x1400 - 64, 8, kOutside, kOutside, kThere},  {0x1400 - 97, 32, kOutside, kCount, kThere},
      {0x1400 - 96, 32, kOutside, kCount, kOutside}, {0x100, 9, kThere, kCount, kThere},
      {0x100, 33, kThere, kCount, kCount},           {0x100, 255, kThere, kCount, kCount},
      {0x500, 255, kOutside, kCount, kCount},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(std::to_string(c.base) + " " + std::to_string(c.count));
    const AreaReader read = Over(at(c.base, c.count));
    EXPECT_EQ(ReadNodes(read, c.base).state, c.nodes);
    EXPECT_EQ(ReadSensors(read, c.base).state, c.sensors);
    EXPECT_EQ(ReadLuxMap(read, c.base).state, c.map);
  }
  EXPECT_EQ(ReadNode(Over({}), 0xFFFF, UINT32_MAX).state, kOutside);
  EXPECT_EQ(ReadNode(Over({}), 0x1400 - 33, 1).state, kThere);
  EXPECT_EQ(ReadNode(Over({}), 0x1400 - 33, 2).state, kOutside);
  EXPECT_EQ(ReadFallback(Over({}), 0x1400 - 3).state, kThere);
  EXPECT_EQ(ReadFallback(Over({}), 0x1400 - 2).state, kOutside);
  EXPECT_EQ(ReadNodes(Over(at(0x100, 2), 0x101), 0x100).state, kUnread);
  EXPECT_TRUE(ReadNodes(Over(at(0x100, 2), 0x101), 0x100).table.empty());
}

TEST(BrightnessTable, ReadsTheImagesTables) {
  Image image{};
  const Data bytes = brightness_bytes::List({{8, 0, 100, 0xFF}, {20, 30, 200}}, true);
  std::copy(bytes.begin(), bytes.end(), image.begin());
  EXPECT_EQ(ListNodeAt(image, 0), (ListNode{0x08, 0x00, 0x0F, 100, 1, 2, 3, 4}));
  EXPECT_EQ(ListNodeAt(image, 1), (ListNode{0x20, 0x30, 0x01, 200, 1, 2, 3, 4}));
  EXPECT_EQ(ListNodeAt(image, 32), ListNode{});
  EXPECT_TRUE(ListHasColours(image));
  for (const auto& [count, used] : {std::pair(0, 1), {2, 2}, {32, 32}, {33, 32}, {255, 32}}) {
    image[1] = static_cast<uint8_t>(count);
    EXPECT_EQ(ListCount(image), used);
  }
  image = {0x7D, 2, 0, 0, 0, 0xE8, 0x03, 0x0A, 0x00, 250, 20, 16};
  const uint8_t record[] = {0, 9, 0x34, 0x12, 5};
  std::copy(std::begin(record), std::end(record), image.begin() + 0x30);
  EXPECT_EQ(LuxRangeOf(image), (LuxRange{1000, 10, 250, 20, 16}));
  EXPECT_EQ(SensorsOf(image), (std::vector<Sensor>{{}, {0, 9, 0x1234, 5}}));
  image[1] = 9;
  EXPECT_EQ(SensorsOf(image), std::nullopt);
}

}  // namespace
