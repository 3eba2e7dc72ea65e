// Many boards side by side, and one command for them all.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <set>
#include <sstream>

#include "board/files.h"
#include "support/board_kit.h"
#include "support/ctl.h"
#include "support/process.h"

namespace {

using support::RunResult;

class Fleet : public testing::Test {
 protected:
  void SetUp() override {
    std::array<int, 2> said;
    ASSERT_EQ(pipe2(said.data(), O_CLOEXEC), 0);
    fleet_ = std::make_unique<support::Process>(support::Start{
        .command = {support::Built("quivord-board"), "fleet", "3", board_kit::Named(), "slot=5"},
        .out = said[1]});
    close(said[1]);
    std::FILE* const stream = fdopen(said[0], "r");
    std::array<char, 400> line = {};
    ASSERT_NE(std::fgets(line.data(), line.size(), stream), nullptr);
    std::fclose(stream);
    EXPECT_NE(std::string(line.data()).find("3 boards run in"), std::string::npos);
  }

  static RunResult All(support::Words words) {
    words.insert(words.begin(), {"--all", "--board", board_kit::Named().string()});
    return support::Ctl(words);
  }

  std::unique_ptr<support::Process> fleet_;
};

TEST_F(Fleet, AnswersBoardByBoardAndEndsAsAWhole) {
  EXPECT_EQ(All({"write", "0xF0000A00", "7"}).status, 0);
  const RunResult text = All({"read", "0xF0000A00", "1"});
  EXPECT_EQ(text.status, 0) << text.err;
  for (const char* const name : {"01", "02", "03"}) {
    EXPECT_NE(text.out.find(std::string(name) + "  0xF0000A00  07  |.|\n"), std::string::npos)
        << text.out;
  }
  std::istringstream lines(All({"--json", "read", "0xF0000A00", "1"}).out);
  std::set<std::string> boards;
  for (std::string line; std::getline(lines, line);) {
    boards.insert(nlohmann::json::parse(line).at("board"));
  }
  EXPECT_EQ(boards, (std::set<std::string>{"01", "02", "03"}));

  fleet_->Signal(SIGTERM);
  EXPECT_EQ(fleet_->Wait(std::chrono::seconds(20)), 0);
  const RunResult after = All({"ping"});
  EXPECT_EQ(after.status, 3);
  EXPECT_NE(after.err.find("03  quivordctl: "), std::string::npos) << after.err;
}

TEST_F(Fleet, WritesAFileForEachBoard) {
  const std::filesystem::path folder = board_kit::Named();
  const auto get = [&](const char* file) { return All({"wall", "draw", folder / file}); };
  const RunResult shared = get("wall.svg");
  EXPECT_EQ(shared.status, 2);
  EXPECT_NE(shared.err.find("have {board} in its name"), std::string::npos) << shared.err;
  EXPECT_EQ(get("wall-{board}.svg").status, 0);
  for (const char* const file : {"wall-01.svg", "wall-02.svg", "wall-03.svg"}) {
    EXPECT_TRUE(std::filesystem::exists(folder / file)) << file;
  }
}

TEST_F(Fleet, GoesOnWithoutABoardThatEnded) {
  const std::string pid =
      board::ReadWhole(board_kit::Named() / "02/var/run/quivord.pid").value_or("0");
  ASSERT_EQ(kill(std::stoi(pid), SIGKILL), 0);
  while (kill(std::stoi(pid), 0) == 0) usleep(1000);
  const RunResult rest = All({"read", "0xF0000A00", "1"});
  EXPECT_EQ(rest.status, 3);
  EXPECT_NE(rest.out.find("01  "), std::string::npos) << rest.out;
  EXPECT_EQ(rest.out.find("02  "), std::string::npos) << rest.out;
  EXPECT_NE(rest.out.find("03  "), std::string::npos) << rest.out;
}

TEST(FleetCommand, SaysWhatIsMissing) {
  EXPECT_EQ(board_kit::RunTool("fleet 0 " + board_kit::Named().string()).status, 2);
  EXPECT_EQ(board_kit::RunTool("fleet 2 /dev/null").status, 1);
  const RunResult none = support::Ctl({"--all", "ping"});
  EXPECT_EQ(none.status, 2);
  EXPECT_NE(none.err.find("finds no board in"), std::string::npos) << none.err;
}

}  // namespace
