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

TEST(BusSocket, ReplacesADeadOneAndNothingElse) {
  const fs::path path = Fresh("socket");
  { ASSERT_TRUE(Listen(path)); }
  ASSERT_TRUE(fs::is_socket(path));
  const auto listener = Listen(path);  // nobody listens on what is there
  ASSERT_TRUE(listener);
  EXPECT_EQ(fs::status(path).permissions(), fs::perms(0600)) << "its owner's alone";
  EXPECT_FALSE(Listen(path)) << "somebody listens";
  const fs::path file = Fresh("file");
  std::ofstream(file) << "mine";
  EXPECT_FALSE(Listen(file));
  EXPECT_TRUE(fs::is_socket(path) && fs::is_regular_file(file));
}

}  // namespace
