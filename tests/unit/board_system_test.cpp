// Shell commands, paths, time and devices: everything stays within the board.
#include <gtest/gtest.h>
#include <platform/system.h>

#include <array>
#include <chrono>
#include <csignal>
#include <thread>

#include "board/command.h"
#include "board/files.h"
#include "support/board_kit.h"

namespace board {
namespace {

using board_kit::Configure;
using board_kit::PutProgram;
using board_kit::TraceLines;

TEST(BoardCommand, TurnsPathsIntoTheFolder) {
  const struct {
    const char* text;
    const char* run;
    const char* shown;
    bool strays;
  } kCases[] = {
      {"mkdir -p /log", "mkdir -p '/b d/log'", "mkdir -p /log", false},
      {"cp /a/b '/c d' 2>/e", "cp '/b d/a/b' '/b d/c d' 2>'/b d/e'", "cp /a/b /c d 2>/e", false},
      {"rm \"/b d/x\";ls /", "rm '/b d/x';ls '/b d/'", "rm /x;ls /", false},
      {"rm /b\\ d/x", "rm '/b d/x'", "rm /x", false},
      {"echo 'a /b' c/d \"e\"", "echo 'a /b' c/d \"e\"", "echo 'a /b' c/d \"e\"", false},
      {"echo '/it'\\''s'", "echo '/b d/it'\\''s'", "echo /it's", false},
      {"/bin/cat /x", "'/bin/cat' '/b d/x'", "/bin/cat /x", false},
      {"/bin/sh -c x", nullptr, "/bin/sh -c x", true},
      {"cat /proc/1/maps", nullptr, "cat /proc/1/maps", true},
      {"cat /a/../../etc/passwd", nullptr, "cat /a/../../etc/passwd", true},
      {"cat '/b d/../x'", nullptr, "cat /../x", true},
      {"cat /a/../b", "cat '/b d/a/../b'", "cat /a/../b", false},
      {"cat '/b dx'", "cat '/b d/b dx'", "cat /b dx", false},
      {"echo x'/b d'/y", "echo x'/b d'/y", "echo x''/y", false},
  };
  for (const auto& c : kCases) {
    const Command command = BoardCommand(c.text, "/b d");
    if (c.run != nullptr) {
      EXPECT_EQ(command.run, c.run) << c.text;
    }
    EXPECT_EQ(command.shown, c.shown) << c.text;
    EXPECT_EQ(command.strays, c.strays) << c.text;
  }
}

TEST(BoardCommand, FindsTheStandInsItMayRun) {
  const std::vector<std::pair<const char*, std::vector<std::string_view>>> kCases = {
      {"sync", {"bin/sync"}},
      {"envcfg set a 1;'reboot' -f", {"bin/envcfg", "bin/reboot"}},
      {"sh -c 'sleep 1; reboot -f'", {"bin/reboot"}},
      {"/usr/brm100/bin/fw_setenv ethaddr 0", {"usr/brm100/bin/fw_setenv"}},
      {"/x/../usr/brm100/bin/fw_setenv a", {"usr/brm100/bin/fw_setenv"}},
      {"echo syncs a.sync fpga_conf ./sync", {}},
      {"/bin/cat /sys/class/fpga/fpga_conf", {}},
  };
  for (const auto& [text, wanted] : kCases) {
    EXPECT_EQ(BoardCommand(text, "/board").stand_ins, wanted) << text;
  }
}

TEST(BoardShell, RunsInTheBoardAndTracesWithoutTheFolder) {
  Configure("trace = shell");
  Folder();
  PutProgram("bin/killall", "echo \"$@\" > \"$QUIVORD_BOARD/log/seen\"; exit 7");
  EXPECT_EQ(platform::RunShell("killall moirad"), 7);
  EXPECT_EQ(platform::RunShell("mkdir -p /tmp/deep/er && test -d '/tmp/deep/er'"), 0);
  EXPECT_EQ(platform::RunShell("kill -TERM $$"), 128 + SIGTERM);
  EXPECT_EQ(platform::RunShell("no-such-program-here 2>/tmp/err"), 127);
  EXPECT_EQ(ReadWhole(Folder() / "log/seen"), "moirad\n");
  const std::vector<std::string> wanted = {
      "shell 7 killall moirad",
      "shell 0 mkdir -p /tmp/deep/er && test -d /tmp/deep/er",
      "shell 143 kill -TERM $$",
      "shell 127 no-such-program-here 2>/tmp/err",
  };
  EXPECT_EQ(TraceLines(), wanted);
}

TEST(BoardShell, RefusesWithoutRunningAnything) {
  Configure("trace = shell");
  std::filesystem::remove(Folder() / "bin/sync");
  EXPECT_EQ(platform::RunShell("touch /tmp/ran; sync"), 127) << "the PC's sync is not run";
  board_kit::Put("bin/sync", "not executable");
  EXPECT_EQ(platform::RunShell("touch /tmp/ran; sync"), 127);
  EXPECT_EQ(platform::RunShell("touch /tmp/ran; cat /../etc/passwd"), 126);
  EXPECT_EQ(platform::OpenShell("touch /tmp/ran; cat /proc/cpuinfo"), nullptr);
  EXPECT_FALSE(std::filesystem::exists(Folder() / "tmp/ran"));
  EXPECT_EQ(TraceLines().back(), "shell 126 touch /tmp/ran; cat /proc/cpuinfo");
  PutProgram("bin/sync", "exit 0");
  EXPECT_EQ(platform::RunShell("sync"), 0) << "stood in for again while the daemon runs";
}

std::int64_t PcSeconds() { return std::time(nullptr); }

TEST(BoardClock, IsThePcsPlusTheOffset) {
  Configure("trace = clock");
  const auto ahead = [] { return static_cast<double>(platform::Time() - PcSeconds()); };
  EXPECT_NEAR(ahead(), 0, 1);
  const std::int64_t offset = 3600'000'000;
  std::ofstream(Folder() / "clock", std::ios::in | std::ios::out)
      .write(reinterpret_cast<const char*>(&offset), 8);
  EXPECT_NEAR(ahead(), 3600, 1);
  const struct timeval wanted { 1000000000, 250000 };
  ASSERT_EQ(platform::SetTimeOfDay(&wanted, nullptr), 0);
  for (const struct timeval wrong : {timeval{-1, 0}, timeval{0, 1000000}, timeval{0, -1}}) {
    EXPECT_EQ(platform::SetTimeOfDay(&wrong, nullptr), -1);
  }
  EXPECT_EQ(platform::SetTimeOfDay(nullptr, nullptr), -1);
  EXPECT_NEAR(static_cast<double>(platform::Time()), 1000000000, 1);
  EXPECT_EQ(TraceLines(), std::vector<std::string>{"clock set 1000000000"});
}

TEST(BoardClock, AtSpeedMovesByTheWaitsOfItsThreadAlone) {
  Configure("speed = 2000");
  const auto begin = std::chrono::steady_clock::now();
  struct timeval start {
  }, now{};
  platform::GetTimeOfDay(&start, nullptr);
  EXPECT_NEAR(static_cast<double>(start.tv_sec), static_cast<double>(PcSeconds()), 1);
  platform::SleepMicroseconds(10'000'000);
  platform::GetTimeOfDay(&now, nullptr);
  EXPECT_EQ(now.tv_sec * 1000000 + now.tv_usec, start.tv_sec * 1000000 + start.tv_usec);
  std::thread([] {
    platform::KeepTime();
    for (int i = 0; i < 100; ++i) platform::SleepMicroseconds(200'000);
    platform::SleepMicroseconds(100);
  }).join();
  platform::GetTimeOfDay(&now, nullptr);
  const auto moved = (now.tv_sec - start.tv_sec) * 1000000 + now.tv_usec - start.tv_usec;
  EXPECT_EQ(moved, 20'000'100);
  const auto spent = std::chrono::steady_clock::now() - begin;
  EXPECT_GE(spent, std::chrono::milliseconds(15)) << "each wait takes its share";
  EXPECT_LT(spent, std::chrono::seconds(5));
}

}  // namespace
}  // namespace board
