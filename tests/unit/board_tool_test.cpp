// The board program: its commands, how it refuses, how it runs a daemon, and its other names.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <platform/system.h>
#include <unistd.h>

#include <csignal>
#include <regex>

#include "board/cells.h"
#include "board/envstore.h"
#include "board/files.h"
#include "board/power.h"
#include "support/board_kit.h"
#include "support/run.h"

namespace board {
namespace {

namespace fs = std::filesystem;

using board_kit::Configure;
using board_kit::Named;
using board_kit::Put;
using board_kit::PutProgram;
using board_kit::RunCommand;
using board_kit::RunTool;
using board_kit::TraceLines;

std::uint8_t Cell(std::uint32_t address) {
  std::uint8_t cell = 0;
  LoadCells(1, address, 1, &cell);
  return cell;
}

TEST(BoardTool, RefusesInOneLineWithItsOwnStatus) {
  const std::string board = Named();
  const struct {
    std::string arguments;
    int status;
    const char* says;
  } kCases[] = {
      {"", 2, "subcommand"},
      {"paint", 2, "no command is called 'paint'"},
      {"create " + board + "/new slot=256", 2, "0 to 255"},
      {"create " + board + "/new colour=1", 3, "unknown key 'colour'"},
      {"create " + board, 1, "edit that file"},
      {"fault fpga-reads 1", 3, "fault --list"},
      {"fault net", 2, "COUNT"},
      {"fault net 2147483648", 2, "count"},
      {"peek 0x100000000", 2, "address"},
      {"poke 1", 2, "BYTES"},
      {"link 16 up", 2, "port '16'"},
      {"fiber 3 1 up", 2, "fiber '3'"},
      {"peek 1 --board " + board + "/none", 1, "quivord-board create"},
      {"power-up " + board + "/none", 1, "quivord-board create"},
  };
  Folder();
  for (const auto& c : kCases) {
    const auto ran = RunTool(c.arguments);
    EXPECT_EQ(ran.status, c.status) << c.arguments;
    EXPECT_NE(ran.output.find(c.says), ran.output.npos) << c.arguments << ": " << ran.output;
    EXPECT_EQ(std::count(ran.output.begin(), ran.output.end(), '\n'), 1) << ran.output;
  }
  EXPECT_FALSE(fs::exists(Named() / "new"));
  EXPECT_FALSE(fs::exists(Named() / "none"));
}

TEST(BoardTool, ChangesWhatTheDaemonMeets) {
  Configure("port.0.cards=0\nport.0.multi=0\nport.1.cards=0\n");
  Folder();
  const struct {
    const char* command;
    std::vector<std::pair<std::uint32_t, int>> cells;
  } kCases[] = {
      {"link 0 up", {{0x1F, 0x01}, {0xF05100, 0x01}}},
      {"link 15 up", {{0x127, 0x08}, {0xF05103, 0x08}}},
      {"link 6 up", {{0x9F, 0x04}, {0xF05101, 0x04}}},
      {"link 0 down", {{0x1F, 0}, {0xF05100, 0}}},
      {"fiber 1 0 up", {{0x1F2, 0x01}, {0xF04000, 0x01}}},
      {"fiber 1 9 up", {{0x1F3, 0x02}, {0xF04001, 0x02}}},
      {"fiber 2 15 up", {{0x1F5, 0x80}, {0xF04003, 0x80}}},
      {"fiber 2 15 down", {{0x1F5, 0}, {0xF04003, 0}}},
      {"fiber-status 0xA0", {{0x1D7, 0xA0}}},
      {"poke 0x17 0x12 0x34", {{0x17, 0x12}, {0x18, 0x34}}},
  };
  for (const auto& c : kCases) {
    ASSERT_EQ(RunTool(c.command).status, 0) << c.command;
    for (const auto& [cell, value] : c.cells) EXPECT_EQ(Cell(cell), value) << c.command;
  }
  EXPECT_EQ(RunTool("peek 0x17 2").output, "0x00000017  12 34\n");
  EXPECT_EQ(RunTool("peek --fpga 0 0x17").output, "0x00000017  00\n");
  EXPECT_EQ(RunTool("lux 1200").status, 0);
  EXPECT_EQ(ReadWhole(Folder() / "sensors/lux"), "1200\n");
  EXPECT_EQ(RunTool("fault env-open -1").status, 0);
  EXPECT_EQ(FaultCount(Fault::kEnvOpen), -1);
  const auto listed = RunTool("fault --list").output;
  for (const FaultRow& row : kFaultTable) {
    const std::string count = row.fault == Fault::kEnvOpen ? "-1" : "0";
    const std::regex line("(^|\n)" + std::string(row.name) + " +" + count + "  .+\n");
    EXPECT_TRUE(std::regex_search(listed, line)) << row.name;
  }
}

TEST(BoardTool, PowerUpClearsCellsButForTheStatus) {
  Put("etc/init.d/flag_fpgaload", "");
  const std::vector<std::uint8_t> ones(0x2000, 0xFF);
  for (const std::uint32_t at : {0U, 0xF04000U, 0x600800U, kCellCount - 0x2000}) {
    StoreCells(1, at, 0x2000, ones.data());
    StoreCells(0, at, 0x2000, ones.data());
  }
  ASSERT_EQ(RunTool("power-up " + Named().string()).status, 0);
  EXPECT_FALSE(fs::exists(Named() / "etc/init.d/flag_fpgaload"));
  for (const char* const name : {"fpga/0.mem", "fpga/1.mem"}) {
    const auto cells = *ReadWhole(Folder() / name);
    // 1 + 2 + 4 + 2 + 2 + 2 + 1 + 2 + 10 cells of the page, and two words.
    EXPECT_EQ(std::count(cells.begin(), cells.end(), '\xFF'), 26 + 8);
    EXPECT_EQ(std::count(cells.begin(), cells.end(), '\0'), kCellCount - 34);
  }
}

// A folder with a copy of the board program and a script in the daemon's place.
std::string WithDaemon(const std::string& script) {
  Put("kit/quivord", "");
  fs::copy_file(support::Built("quivord-board"), Named() / "kit/quivord-board");
  PutProgram("kit/quivord", "cd \"$QUIVORD_BOARD\"\n" + script);
  return (Named() / "kit/quivord-board").string() + " run " + Named().string();
}

TEST(BoardRun, CreatesTheFlagAndEndsWithTheDaemonsStatus) {
  Configure("fpga.load_ms = 50\n");
  const auto run = WithDaemon(
      "echo \"$@\" > log/options; test -e etc/init.d/flag_fpgaload && exit 9\n"
      "while ! test -e etc/init.d/flag_fpgaload; do sleep 0.01; done; exit 5");
  EXPECT_EQ(RunCommand(run + " -- -info 'two words'").status, 5);
  EXPECT_EQ(ReadWhole(Named() / "log/options"), "-info two words\n");
  PutProgram("kit/quivord", "kill -USR1 $$");
  EXPECT_EQ(RunCommand(run).status, 128 + SIGUSR1);
  fs::remove(Named() / "kit/quivord");
  EXPECT_EQ(RunCommand(run).status, 1);
}

TEST(BoardRun, PassesSignalsOn) {
  const auto run = WithDaemon("trap 'exit 6' TERM; kill -TERM $PPID; while :; do sleep 0.01; done");
  EXPECT_EQ(RunCommand(run).status, 6) << "a stop, not a reboot";
}

TEST(BoardRun, StartsAgainAfterACutWithAPowerUp) {
  const std::uint8_t one = 1;
  StoreCells(1, 0x600000, 1, &one);
  Put("etc/init.d/flag_fpgaload", "");
  const auto run = WithDaemon(
      "echo x >> log/starts; test -e etc/init.d/flag_fpgaload && echo loaded >> log/starts\n"
      "test $(wc -l < log/starts) = 2 && exit 75; exit 0");
  EXPECT_EQ(RunCommand(run).status, 0);
  EXPECT_EQ(ReadWhole(Named() / "log/starts"), "x\nloaded\nx\n");
  EXPECT_EQ(Cell(0x600000), 0);
}

TEST(BoardRun, StartsAgainAfterARebootAndForgetsABrokenReset) {
  for (const char* const key : {"returnfactory", "factory_enable", "firstboot"}) WriteEnv(key, "1");
  const auto run = WithDaemon(
      "grep -c =0 usr/zeph/etc/envcfg/env >> log/starts\n"
      "test $(wc -l < log/starts) = 1 && { bin/envcfg set firstboot 1; bin/reboot -f; exit 3; }\n"
      "exit 4");
  EXPECT_EQ(RunCommand(run).status, 4);
  EXPECT_EQ(ReadWhole(Named() / "log/starts"), "3\n2\n") << "and keeps what a reboot left";
  EXPECT_EQ(RunCommand(run).status, 4) << "the reboot counts once";
}

TEST(BoardStandIns, AreProgramsOfTheBoard) {
  Configure("trace = shell");
  SetFaultCount(Fault::kFpgaWrite, 1);
  SetFaultCount(Fault::kEnvOpen, 1);
  const struct {
    const char* command;
    int status;
  } kCases[] = {
      {"envcfg set boot_screen 'a b'", 0},
      {"test \"$(envcfg get boot_screen)\" = 'a b'", 0},
      {"envcfg get unset", 1},
      {"envcfg set a=b 1", 1},
      {"envcfg set a", 2},
      {"fpga w s 0x1eb 0x5a", 0},
      {"fpga w s 0x17 1", 0},
      {"fpga r s 0x17", 2},
      {"fpga w s 0x17 256", 2},
      {"hwclock -w --localtime", 0},
      {"killall moirad", 0},
      {"sync", 0},
      {"sync", 0},
      {"/usr/brm100/bin/fw_setenv ethaddr 00:11", 0},
      {"/usr/brm100/bin/fw_setenv x", 2},
      {"reboot", 2},
  };
  std::vector<std::string> wanted;
  for (const auto& c : kCases) {
    EXPECT_EQ(platform::RunShell(c.command), c.status) << c.command;
    wanted.push_back("shell " + std::to_string(c.status) + " " + c.command);
  }
  EXPECT_EQ(TraceLines(), wanted);
  EXPECT_EQ(Cell(0x1EB), 0x5A);
  EXPECT_EQ(Cell(0x17), 0) << "a status cell";
  EXPECT_EQ(ReadWhole(Folder() / "usr/brm100/bootenv"), "ethaddr=00:11\n");
  EXPECT_EQ(FaultCount(Fault::kSyncCount), 2);
  EXPECT_EQ(FaultCount(Fault::kFpgaWrite) + FaultCount(Fault::kEnvOpen), 2);
}

TEST(BoardStandIns, RebootEndsTheHolderOfTheLock) {
  Configure("trace = shell");
  const std::string pid_file = Folder() / "var/run/quivord.pid";
  Put("var/run/quivord.pid", std::to_string(getpid()) + "\n");  // what it says is nothing to go by
  Put("etc/init.d/flag_fpgaload", "");
  int ready[2];
  ASSERT_EQ(pipe(ready), 0);
  const pid_t holder = fork();
  if (holder == 0) {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    const bool held = fcntl(open(pid_file.c_str(), O_RDWR), F_SETLK, &lock) == 0;
    if (write(ready[1], held ? "y" : "n", 1) != 1) _exit(1);
    for (;;) pause();
  }
  char held = 0;
  ASSERT_EQ(read(ready[0], &held, 1), 1);
  ASSERT_EQ(held, 'y');
  EXPECT_EQ(RunCommand((Folder() / "bin/reboot").string() + " -f").status, 0);
  int status = 0;
  ASSERT_EQ(waitpid(holder, &status, WNOHANG), holder) << "still running";
  EXPECT_EQ(WTERMSIG(status), SIGKILL);
  EXPECT_EQ(TraceLines(), std::vector<std::string>{"shell 0 reboot -f"});
  EXPECT_FALSE(fs::exists(Folder() / "etc/init.d/flag_fpgaload"));
  EXPECT_TRUE(TakeReboot());
  EXPECT_FALSE(TakeReboot());
}

}  // namespace
}  // namespace board
