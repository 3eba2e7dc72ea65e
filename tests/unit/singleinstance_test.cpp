// The guard against a second daemon on the same board.
#include "singleinstance.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "support/board_kit.h"

namespace {

namespace fs = std::filesystem;
using testing::ExitedWithCode;
using ZEPH_MCUC::runSingleInstance;

fs::path PidFile() { return board::Folder() / "var/run/quivord-unit-test.pid"; }

TEST(SingleInstance, LocksAFileWithTheProcessNumberAndRefusesAnother) {
  board_kit::Put("var/run/quivord-unit-test.pid", "99999999 of a daemon that has crashed");
  ASSERT_EQ(runSingleInstance(), 1);
  std::ifstream file(PidFile());
  std::string text;
  std::getline(file, text);
  EXPECT_EQ(text, std::to_string(getpid()));
  EXPECT_EXIT(_exit(runSingleInstance() == 0 ? 7 : 8), ExitedWithCode(7),
              "^quivord: already running, stop that one first: .*/var/run/.*pid is locked: .*\n$");
}

TEST(SingleInstance, EndsWhereTheFileCannotBeOpened) {
  fs::create_directories(PidFile());
  EXPECT_EXIT(runSingleInstance(), ExitedWithCode(1),
              "^quivord: cannot open " + PidFile().string() + ": Is a directory\n$");
}

}  // namespace
