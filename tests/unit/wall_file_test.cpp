#include "wall/file.h"

#include <gtest/gtest.h>

#include "wall/check.h"

namespace quivord::wall {
namespace {

TEST(WallFile, RoundTrip) {
  const Smart smart{.rows = 255, .columns = 3, .perCable = 300, .mode = 7};
  const auto read = ParseFile(SmartJson(smart).dump());
  ASSERT_TRUE(read) << read.error().text;
  EXPECT_EQ(read.value().kind, Kind::kSmart);
  EXPECT_EQ(read.value().smart, smart);

  PortRecords records{};
  records[0] = {0, 2, 2, 0, 0};
  records[9] = {5, 1, 12, 65535, 7};
  const auto advanced = ParseFile(AdvancedJson(records).dump());
  ASSERT_TRUE(advanced) << advanced.error().text;
  EXPECT_EQ(advanced.value().kind, Kind::kAdvanced);
  EXPECT_EQ(advanced.value().records, records);
}

TEST(WallFile, FaultsAreNamed) {
  const struct {
    const char* text;
    const char* fault;
  } cases[] = {
      {"{", "not JSON"},
      {"[]", "the file is an object"},
      {"{}", "has no \"kind\""},
      {R"({"kind": "other"})", "\"kind\" is smart or advanced"},
      {R"({"kind": "smart", "rows": 0, "columns": 1, "cables": 0, "per_cable": 1})",
       "\"rows\" is a number from 1 to 255"},
      {R"({"kind": "smart", "rows": 1.5, "columns": 1, "cables": 0, "per_cable": 1})",
       "\"rows\" is a number"},
      {R"({"kind": "smart", "rows": 18446744073709551615, "columns": 1, "cables": 0})",
       "\"rows\" is a number"},
      {R"({"kind": "smart", "rows": 1, "columns": "1", "cables": 0, "per_cable": 1})",
       "\"columns\" is a number"},
      {R"({"kind": "smart", "rows": 1, "columns": 1, "cables": 8, "per_cable": 1})",
       "\"cables\" is a connection mode"},
      {R"({"kind": "smart", "rows": 1, "columns": 1, "cables": 0, "per_cabel": 1})",
       "has \"per_cabel\", which is unknown"},
      {R"({"kind": "advanced", "ports": {}})", "\"ports\" is a list"},
      {R"({"kind": "advanced", "ports": [1]})", "entry 0 of \"ports\" is an object"},
      {R"({"kind": "advanced", "ports": [{"port": 10}]})", "\"port\" is a number from 0 to 9"},
      {R"({"kind": "advanced", "ports": [
           {"port": 1, "cables": 0, "rows": 1, "columns": 1, "x": 0, "y": 0},
           {"port": 1, "cables": 0, "rows": 1, "columns": 1, "x": 0, "y": 0}]})",
       "port 1 is there twice"},
      {R"({"kind": "advanced", "ports": [
           {"port": 1, "cables": 0, "rows": 1, "columns": 1, "x": 65536, "y": 0}]})",
       "\"x\" is a number from 0 to 65535"},
  };
  for (const auto& test : cases) {
    const auto read = ParseFile(test.text);
    ASSERT_FALSE(read) << test.text;
    EXPECT_EQ(read.error().trouble, Trouble::kWrongUse);
    EXPECT_NE(read.error().text.find(test.fault), std::string::npos) << read.error().text;
  }
}

TEST(WallFile, ModesByWordAndByNumber) {
  EXPECT_EQ(ParseMode("top-left-rows"), 0);
  EXPECT_EQ(ParseMode("bottom-right-columns"), 7);
  EXPECT_EQ(ParseMode("5"), 5);
  for (const char* word : {"8", "", "05", "top-left", "Top-left-rows"}) {
    EXPECT_FALSE(ParseMode(word).has_value()) << word;
  }
}

TEST(WallCheck, SmartWalls) {
  const struct {
    Smart smart;
    const char* reason;  // null: none
  } cases[] = {
      {{4, 3, 5, 0}, nullptr},
      {{32, 64, 205, 0}, nullptr},
      {{10, 1, 1, 0}, nullptr},  // ten ports
      {{0, 3, 1, 0}, "at least 1"},
      {{4, 3, 0, 0}, "at least 1 cabinet"},
      {{4, 3, 5, 8}, "from 0 to 7"},
      {{2, 2, 5, 0}, "2 x 2 are 4 cabinets, fewer than the 5"},
      {{4, 5, 1, 0}, "more than 16 cables of 1 carry; let each cable carry at least 2"},
      {{11, 1, 1, 0}, "on 11 cables, and there are 10 ports; let each cable carry at least 2"},
      {{64, 33, 205, 0}, "2048 at most"},
      {{25, 25, 513, 0}, "512 cabinets at most"},
  };
  for (const auto& test : cases) {
    const auto obstacle = SmartObstacle(test.smart);
    const std::string wall =
        std::to_string(test.smart.rows) + " x " + std::to_string(test.smart.columns);
    ASSERT_EQ(obstacle.has_value(), test.reason != nullptr) << wall;
    if (!obstacle.has_value()) continue;
    EXPECT_NE(obstacle->find(test.reason), std::string::npos) << *obstacle;
  }
}

TEST(WallCheck, AdvancedWalls) {
  PortRecords records{};
  EXPECT_TRUE(AdvancedObstacle(records).has_value()) << "nothing on any port";
  records[3] = {0, 22, 23, 0, 0};
  EXPECT_FALSE(AdvancedObstacle(records).has_value());
  records[3] = {0, 23, 23, 0, 0};
  EXPECT_EQ(AdvancedObstacle(records),
            "port 3: 23 x 23 are 529 cabinets, and a port carries 512 at most");
  records[3] = {8, 1, 1, 0, 0};
  EXPECT_TRUE(AdvancedObstacle(records).has_value()) << "mode 8";
  records.fill({0, 51, 4, 0, 0});
  EXPECT_FALSE(AdvancedObstacle(records).has_value()) << "2040 on all";
  records.fill({0, 41, 5, 0, 0});
  EXPECT_TRUE(AdvancedObstacle(records).has_value()) << "2050 on all";
  records.fill({0, 16, 16, 0, 0});
  records[8] = records[9] = {};
  EXPECT_TRUE(AdvancedObstacle(records).has_value())
      << "2048, and two empty ones count as one each";
}

}  // namespace
}  // namespace quivord::wall
