// Brightness plans of the client: as files, as tables, and their course.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "brightness/check.h"
#include "brightness/course.h"
#include "brightness/draw.h"
#include "brightness/file.h"
#include "brightness/standing.h"
#include "brightness/words.h"
#include "support/run.h"
#include "support/slow_mix.h"

namespace quivord::brightness {
namespace {

std::string Example(const std::string& kind) {
  std::ifstream file(support::Source("examples/brightness-" + std::string(kind) + ".json"));
  return {std::istreambuf_iterator<char>(file), {}};
}

Plan Parsed(const std::string& text) {
  const auto plan = ParsePlan(text);
  EXPECT_TRUE(plan) << plan.error().text;
  return plan ? plan.value() : Plan();
}

TEST(BrightnessPlan, ExamplesComeBackFromTheirTables) {
  for (const char* kind : {"list", "sensor", "mix", "serial", "hardware"}) {
    SCOPED_TRACE(kind);
    const Plan plan = Parsed(Example(kind));
    EXPECT_EQ(RowOf(plan.kind).word, std::string(kind));
    const Bytes table = TableOf(plan);
    EXPECT_EQ(TableSize(table), table.size());
    const Plan back = PlanOf(table);
    EXPECT_EQ(back, plan);
    EXPECT_EQ(PlanJson(back).count("extra"), 0U);
    EXPECT_EQ(Parsed(FileText(back)), plan);
  }
}

TEST(BrightnessPlan, TableHasItsBytes) {
  const Plan plan = Parsed(R"({"kind": "hardware", "gradual": false, "fallback": 45,
    "nodes": [{"time": "08:05", "sensor": true, "days": ["sat", "mon"]},
              {"time": "23:59", "percent": 60, "use": false}],
    "sensors": [{"port": 3, "card": 258, "address": 4}],
    "reading": {"interval_s": 300, "readings": 16}, "lux_map": [{"lux": 4660, "percent": 56}]})");
  brightness_bytes::Mix mix{.mode = 0x9C,
                            .nodes = {{8, 5, true, 0x21, 0}, {23, 59, false, 0x7F, 60, 0}},
                            .sensors = {{0, 3, 258, 4}},
                            .map = {{4660, 56}},
                            .fallback = 45,
                            .interval_s = 300,
                            .readings = 16,
                            .gradual = false};
  EXPECT_EQ(TableOf(plan), mix.Bytes());
  const Plan list = Parsed(R"({"kind": "list", "nodes": [
    {"time": "08:05", "brightness": "60%", "ports": [0, 3],
     "colours": {"red": 1, "green": 2, "blue": 3, "virtual_red": 4}}]})");
  EXPECT_EQ(TableOf(list), brightness_bytes::List({{8, 5, 153, 9}}, true));
  const Bytes sensor = TableOf(Parsed(Example("sensor")));
  EXPECT_EQ(Bytes(sensor.begin(), sensor.begin() + 12),
            (Bytes{0x7D, 1, 0, 0, 0, 0xE0, 0x2E, 20, 0, 255, 25, 16}));
}

// Whatever a device holds comes back byte for byte; through a file too, where a file may say it.
TEST(BrightnessPlan, AnyTableComesBack) {
  std::mt19937 random(5);
  int written = 0;
  for (int round = 0; round < 3000; ++round) {
    Bytes table =
        TableOf(Parsed(Example(std::array{"list", "sensor", "mix", "hardware"}[round % 4])));
    for (unsigned changes = random() % 6; changes > 0; --changes) {
      table[1 + random() % (table.size() - 1)] = static_cast<std::uint8_t>(random());
    }
    table.resize(TableSize(table));
    const Plan plan = PlanOf(table);
    ASSERT_EQ(TableOf(plan), table) << round;
    const auto again = ParsePlan(PlanJson(plan).dump());
    if (!again) continue;
    ++written;
    ASSERT_EQ(TableOf(again.value()), table) << round << PlanJson(plan).dump();
  }
  EXPECT_GT(written, 800);
}

TEST(BrightnessPlan, FaultsAreNamed) {
  using Text = std::string;
  const auto list = [](const Text& nodes) {
    return R"({"kind": "list", "nodes": [)" + nodes + "]}";
  };
  const auto at8 = [](const Text& fields) { return R"({"time": "08:00", )" + fields + "}"; };
  const auto mix = [&at8](const Text& node, const Text& more = "") {
    return R"({"kind": "mix", "nodes": [)" + at8(node) + "]" + (more.empty() ? "" : ", " + more) +
           "}";
  };
  const auto sensor = [](const Text& sensors, int dark) {
    return R"({"kind": "sensor", "steps": 4, "bright": {"lux": 2, "brightness": 2}, "sensors": [)" +
           sensors + R"(], "dark": {"brightness": 1, "lux": )" + std::to_string(dark) + "}}";
  };
  const Text plain = R"("brightness": 1, "ports": [0])";
  const Text colours = R"("colours": {"red": 1, "green": 1, "blue": 1, "virtual_red": 1})";
  const Text one = R"("port": 0, "card": 0, "address": 1})";
  const Text fixed = R"("percent": 3)";
  const std::pair<Text, const char*> cases[] = {
      {"{", "not JSON"},
      {R"({"kind": "other"})", "\"kind\" is list, sensor, mix, serial or hardware"},
      {list(""), "1 to 32 are needed"},
      {list(R"({"time": "8:00", )" + plain + "}"), "\"time\" is a time"},
      {list(at8(R"("brightness": 256, "ports": [])")), "\"brightness\" is 0 to 255"},
      {list(at8(R"("brightness": 1, "ports": [4])")), "ports from 0 to 3"},
      {list(at8(plain + ", " + colours) + R"(, {"time": "09:00", )" + plain + "}"),
       "\"colours\" each, or none"},
      {list(at8(plain) + ", " + at8(plain)), "node 1 (08:00) does not come after node 0"},
      {sensor("", 1), "\"sensors\": 0, but 1 to 8"},
      {sensor("{" + one, 2), "\"dark\" has as much lux"},
      {sensor(R"({"position": 1, )" + one, 1), "position 1, where no device reads one"},
      {mix(R"("sensor": true)", R"("sensors": [{)" + one + "]"), "\"lux_map\": 0, but 1 to 32"},
      {mix(R"("sensor": true, "percent": 3)"), "no place beside \"sensor\""},
      {mix(R"("percent": 3, "days": ["day"])"), "names days"},
      {mix(R"("percent": 3, "use": false)"), "no node is in use"},
      {mix(fixed, R"("lux_map": [{"lux": 5, "percent": 1}, {"lux": 5, "percent": 2}])"),
       "entry 1 has no more lux"},
      {mix(fixed, R"("reading": {"interval_s": 1, "readings": 17})"),
       "\"readings\" is a number from 0 to 16"},
      {mix(fixed, R"("positions": {"nodes": 17})"), "the nodes would lie on the header"},
      {mix(fixed, R"("positions": {"fallback": 5118, "file_length": 5120})"),
       "bytes, a device holds 5120"},
      {mix(fixed, R"("extra": [{"at": 0, "bytes": "5b"}])"), "\"extra\" changes the plan's kind"},
  };
  for (const auto& [text, fault] : cases) {
    const auto plan = ParsePlan(text);
    ASSERT_FALSE(plan) << text;
    EXPECT_NE(plan.error().text.find(fault), std::string::npos) << plan.error().text;
  }
}

TEST(BrightnessWords, ReadAndWrite) {
  const std::pair<int, const char*> days[] = {
      {0x7F, "every day"}, {0xFF, "every day"},       {0x1F, "mon to fri"}, {0x60, "sat, sun"},
      {0x00, "no day"},    {0x47, "mon to wed, sun"}, {0x05, "mon, wed"},
  };
  for (const auto& [mask, text] : days) EXPECT_EQ(DaysText(static_cast<std::uint8_t>(mask)), text);
  EXPECT_EQ(ParseBrightness("60%"), 153);
  EXPECT_EQ(ParseBrightness("255"), 255);
  for (const char* word : {"", "%", "-1", "256", "101%", "1.5", "1e1", " 1"}) {
    EXPECT_EQ(ParseBrightness(word), std::nullopt) << word;
  }
  EXPECT_EQ(WeekdayWarning(Parsed(Example("hardware"))), "");
  EXPECT_NE(WeekdayWarning(Parsed(Example("mix"))).find("nodes 1 (06:00), 3 (12:00) do not"),
            std::string::npos);
}

TEST(BrightnessCourse, StandsWhereTheClockIs) {
  const Plan plan = Parsed(Example("mix"));
  struct Case {
    int day, hour, minute;  // of May 2026; the first is a Friday
    std::size_t node;
    bool today;
    std::size_t next;
    int in_min;
  };
  constexpr Case kCases[] = {
      {1, 5, 59, 0, true, 1, 1},    {1, 6, 0, 1, true, 2, 90},  {1, 12, 0, 3, false, 4, 120},
      {2, 0, 0, 7, true, 0, 30},    {2, 5, 0, 0, true, 2, 150}, {3, 11, 0, 2, true, 3, 60},
      {31, 23, 30, 7, true, 0, 60},
  };
  for (const Case& c : kCases) {
    const table::Moment now{.year = 26,
                            .month = 5,
                            .day = static_cast<std::uint8_t>(c.day),
                            .hour = static_cast<std::uint8_t>(c.hour),
                            .minute = static_cast<std::uint8_t>(c.minute)};
    SCOPED_TRACE(testing::Message() << c.day << ' ' << c.hour);
    const auto standing = StandingAt(plan, now);
    ASSERT_TRUE(standing.has_value());
    EXPECT_EQ(standing->node, c.node);
    EXPECT_EQ(standing->today, c.today);
    EXPECT_EQ(standing->next, c.next);
    EXPECT_EQ(standing->next_in_min, c.in_min);
  }
  EXPECT_FALSE(StandingAt(Parsed(Example("serial")), {}).has_value());
}

// The course of a week against the second form of the mix's rules, pass by pass of the loop.
TEST(BrightnessCourse, AWeekAgreesWithTheLoop) {
  const brightness_bytes::Mix mix{.nodes = {{0, 30, false, 0x7F, 6},
                                            {6, 0, false, 0x1F, 30},
                                            {12, 0, false, 0x60, 100},
                                            {13, 0, false, 0x7F, 99, 0},
                                            {18, 30, false, 0x55, 60},
                                            {23, 0, false, 0x7F, 20}}};
  const Course course = CourseOf(PlanOf(mix.Bytes()), 0, kWeekDays, 1);
  constexpr std::int64_t kMonday_s = 1'777'852'800;  // 4 May 2026
  constexpr std::int64_t kMinute_us = 60'000'000;
  SlowMix loop(mix, (kMonday_s - 7 * 86'400) * 1'000'000);
  int value = -1;
  for (int minute = 0; minute < kWeekDays * kDayMinutes; ++minute) {
    // Some seconds after the full minute a change has come, and its ramp is over.
    const std::int64_t look = kMonday_s * 1'000'000 + minute * kMinute_us + 30'000'000;
    while (loop.time_us() < look) {
      const auto sent = loop.Pass("0");
      if (!sent.empty()) value = sent.back();
    }
    const Minute& now = course.minutes[static_cast<std::size_t>(minute)];
    ASSERT_EQ(now.value[0], value) << "minute " << minute;
  }
  const auto& first = course.arrivals.front();
  EXPECT_EQ(first.minute, 30);
  EXPECT_NEAR(first.ramp_s, 0.05 * (51 - 15), 1e-9);
}

TEST(BrightnessCourse, FollowsTheLightWhereASensorLeads) {
  const Course course = CourseOf(Parsed(Example("mix")), 4, 1, 30'000);  // a Friday
  const auto at = [&](int hour) {
    return course.minutes[static_cast<std::size_t>(hour * 60)].value[0];
  };
  EXPECT_EQ(at(7), 76);
  EXPECT_EQ(course.minutes[13 * 60].source, Source::kSensor);
  EXPECT_EQ(at(13), 255);
  EXPECT_GT(*at(9), *at(8));
  const Course sensor = CourseOf(Parsed(Example("sensor")), 0, 1, 12'000);
  EXPECT_EQ(sensor.minutes[0].value[0], 25);
  EXPECT_EQ(sensor.minutes[13 * 60].value[0], 255);
  EXPECT_NE(CourseObstacle(Parsed(Example("serial"))), "");
}

}  // namespace
}  // namespace quivord::brightness
