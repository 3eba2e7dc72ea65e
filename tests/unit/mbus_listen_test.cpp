#include "board/mbus_listen.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

#include "support/board_kit.h"

namespace {

namespace fs = std::filesystem;
using board::mbus::Listen;

fs::path Fresh(const std::string& name) {
  const fs::path path = board_kit::Named() / name;
  fs::remove_all(path);
  return path;
}

TEST(BusSocket, IsItsOwnersAlone) {
  const fs::path path = Fresh("mode");
  const auto listener = Listen(path);
  ASSERT_TRUE(listener);
  EXPECT_EQ(fs::status(path).permissions(), fs::perms(0600));
}

TEST(BusSocket, ReplacesOneThatNobodyListensOn) {
  const fs::path path = Fresh("dead");
  { ASSERT_TRUE(Listen(path)); }
  ASSERT_TRUE(fs::is_socket(path));
  EXPECT_TRUE(Listen(path));
}

TEST(BusSocket, LeavesOneThatSomebodyListensOn) {
  const fs::path path = Fresh("alive");
  const auto first = Listen(path);
  ASSERT_TRUE(first);
  EXPECT_FALSE(Listen(path));
  EXPECT_TRUE(fs::is_socket(path));
}

TEST(BusSocket, LeavesAnyOtherFile) {
  const fs::path path = Fresh("file");
  std::ofstream(path) << "mine";
  EXPECT_FALSE(Listen(path));
  EXPECT_TRUE(fs::is_regular_file(path));
}

TEST(BusSocket, TakesAPathOf107BytesAndNotOneMore) {
  const std::string folder = board_kit::Named().string() + "/";
  ASSERT_LT(folder.size(), 100U);
  const std::string longest = folder + std::string(107 - folder.size(), 'x');
  EXPECT_TRUE(Listen(longest));
  EXPECT_FALSE(Listen(longest + "x"));
}

}  // namespace
