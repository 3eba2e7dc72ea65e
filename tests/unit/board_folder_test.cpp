// The board folder: where it lies, what a new one holds, what an old one keeps, what is refused.
#include <gtest/gtest.h>
#include <platform/mbus.h>
#include <platform/system.h>
#include <sys/stat.h>

#include <cstdlib>
#include <fstream>
#include <regex>
#include <thread>

#include "board/board.h"
#include "board/cells.h"
#include "board/faults.h"
#include "board/files.h"
#include "board/folder.h"
#include "support/board_kit.h"

namespace board {
namespace {

namespace fs = std::filesystem;

using board_kit::Configure;
using board_kit::Named;

TEST(BoardFolder, NewOneHoldsEverything) {
  ASSERT_EQ(Folder(), Named());
  const struct {
    const char* path;
    std::uintmax_t size;
  } kFiles[] = {{"fpga/0.mem", kCellCount},
                {"fpga/1.mem", kCellCount},
                {"faults", 64},
                {"clock", 8},
                {"usr/zeph/etc/envcfg/env", 0}};
  for (const auto& file : kFiles) EXPECT_EQ(fs::file_size(Folder() / file.path), file.size);
  for (const char* const name : {"log", "tmp/quivord", "root", "var/run", "run", "etc/init.d",
                                 "usr/zeph/etc/owd/cabCfg", "bin", "usr/brm100/bin"}) {
    EXPECT_TRUE(fs::is_directory(Folder() / name)) << name;
  }
  EXPECT_EQ(ReadWhole(Folder() / "sys/class/fpga/fpga_conf"), "1\n");
  struct stat status {};
  ASSERT_EQ(stat((Folder() / "fpga/1.mem").c_str(), &status), 0);
  EXPECT_LT(status.st_blocks * 512, 1 << 20) << "cells take room on disk";
}

TEST(BoardFolder, KeepsWhatIsThereAndFillsUpShortFiles) {
  Configure("slot = 7\n");
  fs::create_directories(Named() / "fpga");
  std::ofstream(Named() / "fpga/1.mem") << "kept";
  std::ofstream(Named() / "faults") << std::string("\x05\0\0\0", 4);
  EXPECT_EQ(cardsel_bit_self(), 7);
  EXPECT_EQ(FaultCount(Fault::kFpgaWrite), 5);
  EXPECT_EQ(fs::file_size(Folder() / "faults"), 64U);
  const auto cells = *ReadWhole(Folder() / "fpga/1.mem");
  EXPECT_EQ(cells.size(), kCellCount);
  EXPECT_EQ(cells.substr(0, 4), "kept");
  EXPECT_EQ(cells[0x1F], 0) << "an old memory keeps its link bits";
}

TEST(BoardFolder, EnvironmentNamesIt) {
  const struct {
    const char* board;
    const char* runtime;
    std::string wanted;
  } kCases[] = {
      {"/a/b/", "/run/user/7", "/a/b"},
      {"/a/./b/../c", nullptr, "/a/c"},
      {"x", nullptr, (fs::current_path() / "x").string()},
      {nullptr, "/run/user/7", "/run/user/7/quivord-board"},
      {"", "", "/tmp/quivord-board-" + std::to_string(getuid())},
  };
  const std::string own = Named();
  for (const auto& c : kCases) {
    c.board ? setenv("QUIVORD_BOARD", c.board, 1) : unsetenv("QUIVORD_BOARD");
    c.runtime ? setenv("XDG_RUNTIME_DIR", c.runtime, 1) : unsetenv("XDG_RUNTIME_DIR");
    EXPECT_EQ(ChooseFolder(), c.wanted);
  }
  setenv("QUIVORD_BOARD", own.c_str(), 1);
}

using BoardFolderDeathTest = testing::Test;

TEST(BoardFolderDeathTest, RefusesABoardThatCannotBe) {
  const auto ends = testing::ExitedWithCode(1);
  Configure("slot = 1\nslots = 2\n");
  EXPECT_EXIT(cardsel_bit_self(), ends, "board.conf:2: unknown key 'slots'");
  fs::remove(Named() / "board.conf");
  std::ofstream(Named() / "fpga") << "in the way";
  EXPECT_EXIT(Folder(), ends, "fpga");
  fs::remove(Named() / "fpga");
  fs::create_directories(Named() / "clock");
  EXPECT_EXIT(Folder(), ends, "clock");
  fs::remove(Named() / "clock");

  const auto fitting = Named() / std::string(107 - Named().native().size() - 10, 'x');
  setenv("QUIVORD_BOARD", fitting.c_str(), 1);
  EXPECT_EXIT((Folder(), exit(0)), testing::ExitedWithCode(0), "");
  const auto longer = fitting.string() + "y";
  setenv("QUIVORD_BOARD", longer.c_str(), 1);
  EXPECT_EXIT(Folder(), ends, "too long for a socket");
  EXPECT_FALSE(fs::exists(longer));
}

TEST(BoardFaults, TableNamesEveryCounterAtItsPlace) {
  for (std::size_t i = 0; i < kFaultTable.size(); ++i) {
    EXPECT_EQ(static_cast<std::size_t>(kFaultTable[i].fault), i);
    EXPECT_EQ(FaultByName(kFaultTable[i].name), kFaultTable[i].fault);
  }
  EXPECT_EQ(FaultByName("sync"), std::nullopt);
  SetFaultCount(*FaultByName("clock-chip"), 0x01020304);
  EXPECT_EQ(ReadWhole(Folder() / "faults")->substr(44, 4), "\x04\x03\x02\x01");
}

TEST(BoardTrace, OneWholeLineAnAccessInOrderOfTime) {
  Configure("trace = fpga card\n");
  EXPECT_FALSE(Tracing(TraceKind::kEnv));
  std::thread other([] {
    for (int i = 0; i < 500; ++i) Trace(TraceKind::kFpga, "W " + Hex("\x00\xAB", 2));
  });
  for (int i = 0; i < 500; ++i) Trace(TraceKind::kCard, "R " + Hex(nullptr, 0));
  Trace(TraceKind::kEnv, "get unwanted");
  other.join();
  std::ifstream log(Folder() / "trace.log");
  const std::regex shape("(\\d+) (fpga W 00ab|card R -)");
  int lines = 0;
  long long last = 0;
  for (std::string line; std::getline(log, line); ++lines) {
    std::smatch found;
    ASSERT_TRUE(std::regex_match(line, found, shape)) << line;
    EXPECT_GE(std::stoll(found[1]), last);
    last = std::stoll(found[1]);
  }
  EXPECT_EQ(lines, 1000);
}

}  // namespace
}  // namespace board
