#include "wall/file.h"

#include <gtest/gtest.h>

#include "wall/check.h"

namespace quivord::wall {
namespace {

TEST(WallFile, FaultsAreNamed) {
  constexpr char kSmart[] = R"({"kind": "smart", "rows": 1, "columns": 2, "cables": 3,
                                "per_cable": 4})";
  constexpr char kPort[] = R"({"port": 1, "cables": 0, "rows": 1, "columns": 1, "x": 0, "y": 0})";
  const auto smart = [&](const char* from, const char* to) {
    return std::string(kSmart).replace(std::string(kSmart).find(from), std::string(from).size(),
                                       to);
  };
  const auto ports = [](const std::string& list) {
    return R"({"kind": "advanced", "ports": )" + list + "}";
  };
  const std::pair<std::string, const char*> cases[] = {
      {"{", "not JSON: parse error at line 1"},
      {"{}", "has no \"kind\""},
      {R"({"kind": "other"})", "\"kind\" is smart or advanced"},
      {smart(": 1", ": 0"), "\"rows\" is a number from 1 to 255"},
      {smart(": 1", ": 1.5"), "\"rows\" is a number"},
      {smart(": 2", ": \"2\""), "\"columns\" is a number"},
      {smart(": 3", ": 8"), "\"cables\" is a connection mode"},
      {smart("per_cable", "per_cabel"), "has \"per_cabel\", which is unknown"},
      {ports("[1]"), "entry 0 of \"ports\" is an object"},
      {ports(R"([{"port": 10}])"), "\"port\" is a number from 0 to 9"},
      {ports(std::string("[") + kPort + "," + kPort + "]"), "port 1 is there twice"},
  };
  for (const auto& [text, fault] : cases) {
    const auto read = ParseFile(text);
    ASSERT_FALSE(read) << text;
    EXPECT_EQ(read.error().trouble, Trouble::kWrongUse);
    EXPECT_NE(read.error().text.find(fault), std::string::npos) << read.error().text;
  }
}

TEST(WallCheck, SmartWalls) {
  const std::pair<Smart, const char*> cases[] = {
      {{32, 64, 205, 0}, "none"},
      {{10, 1, 1, 0}, "none"},  // ten ports
      {{0, 3, 1, 0}, "at least 1"},
      {{4, 3, 0, 0}, "at least 1 cabinet"},
      {{4, 3, 5, 8}, "from 0 to 7"},
      {{2, 2, 5, 0}, "2 x 2 are 4 cabinets, fewer than the 5"},
      {{4, 5, 1, 0}, "more than 16 cables of 1 carry; let each cable carry at least 2"},
      {{11, 1, 1, 0}, "on 11 cables, and there are 10 ports; let each cable carry at least 2"},
      {{64, 33, 205, 0}, "2048 at most"},
      {{25, 25, 513, 0}, "512 cabinets at most"},
  };
  for (const auto& [smart, reason] : cases) {
    const std::string obstacle = SmartObstacle(smart).value_or("none");
    EXPECT_NE(obstacle.find(reason), std::string::npos) << obstacle;
  }
}

TEST(WallCheck, AdvancedWalls) {
  const auto obstacle = [](std::size_t ports, PortRecord record) {
    PortRecords records{};
    std::fill_n(records.begin(), ports, record);
    return AdvancedObstacle(records);
  };
  EXPECT_TRUE(obstacle(0, {})) << "nothing on any port";
  EXPECT_FALSE(obstacle(1, {0, 22, 23, 0, 0}));
  EXPECT_EQ(obstacle(1, {0, 23, 23, 0, 0}),
            "port 0: 23 x 23 are 529 cabinets, and a port carries 512 at most");
  EXPECT_TRUE(obstacle(1, {8, 1, 1, 0, 0})) << "mode 8";
  EXPECT_FALSE(obstacle(10, {0, 51, 4, 0, 0})) << "2040 on all";
  EXPECT_TRUE(obstacle(10, {0, 41, 5, 0, 0})) << "2050 on all";
  EXPECT_TRUE(obstacle(8, {0, 16, 16, 0, 0})) << "2048, and two empty ones count as one each";
}

}  // namespace
}  // namespace quivord::wall
