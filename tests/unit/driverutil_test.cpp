// The FPGA bus behind the gateway: tries, the latch, the status probe, the clock chip.
#include "driverutil.h"

#include <gtest/gtest.h>

#include <array>
#include <numeric>

#include "board/cells.h"
#include "support/board_kit.h"

namespace {

using namespace ZEPH_MCUC;
using board::Fault;
using board::SetFaultCount;

using Lines = std::vector<std::string>;

void PutStatus(const std::string& text) { board_kit::Put("sys/class/fpga/fpga_conf", text); }

// The trace lines since the last call, without data; a status probe as "probe".
Lines NewAccesses() {
  static std::size_t seen = 0;
  const Lines all = board_kit::TraceLines();
  Lines fresh;
  for (; seen < all.size(); ++seen) {
    const bool probe = all[seen] == "shell 0 /bin/cat /sys/class/fpga/fpga_conf";
    fresh.push_back(probe ? "probe" : all[seen].substr(0, all[seen].rfind(' ')));
  }
  return fresh;
}

// One of the three retried transfers: its fault and what its trace line begins with.
struct Transfer {
  const char* line;
  Fault fault;
  int32_t (*run)(DriverUtil* driver);
};

constexpr Transfer kTransfers[] = {
    {"fpga W 1 0x00000060 2 ", Fault::kFpgaWrite,
     [](DriverUtil* driver) {
       const uint8_t data[2] = {0x12, 0x34};
       return driver->WriteFPGABusBlock(0x60, data, 2);
     }},
    {"fpga W 0 0x00000060 2 ", Fault::kFpgaWrite,
     [](DriverUtil* driver) {
       const uint8_t data[2] = {0x12, 0x34};
       return driver->Write_C4_FPGABusBlock(0x60, data, 2);
     }},
    {"fpga R 1 0x00000060 2 ", Fault::kFpgaRead,
     [](DriverUtil* driver) {
       uint8_t data[2];
       return driver->ReadFPGABusBlock(0x60, data, 2);
     }},
};

struct RetryCase {
  const char* name;
  int failures;
  const char* status;  // what the status file says
  int32_t result;
  int calls;          // on the bus
  bool probed, down;  // the status was asked for; every later call fails at once
};

constexpr RetryCase kRetries[] = {
    {"first try", 0, "1\n", 0, 1, false, false},
    {"third try", 2, "0\n", 0, 3, false, false},
    {"FPGA up", 3, "1\n", -1, 3, true, false},
    {"FPGA up with another number", 3, "42\r\n", -1, 3, true, false},
    {"FPGA down", 3, "0\n", -1, 3, true, true},
    {"no status counts as down", 3, "", -1, 3, true, true},
    {"a status that is no number counts as down", 3, "loading\n", -1, 3, true, true},
    {"an empty line tells nothing", 3, "\n1\n", -1, 3, true, false},
};

TEST(FpgaBus, TriesThreeTimesAndGivesUpOnAnFpgaThatIsDown) {
  board_kit::Configure("trace = fpga shell\n");
  for (const Transfer& transfer : kTransfers) {
    for (const RetryCase& c : kRetries) {
      SCOPED_TRACE(std::string(transfer.line) + c.name);
      PutStatus(c.status);
      SetFaultCount(transfer.fault, c.failures);
      DriverUtil driver;
      EXPECT_EQ(transfer.run(&driver), c.result);
      Lines expected;
      for (int i = 0; i < c.calls; ++i) {
        expected.push_back(transfer.line + std::string(i < c.failures ? "fail" : "ok"));
      }
      if (c.probed) expected.emplace_back("probe");
      EXPECT_EQ(NewAccesses(), expected);

      PutStatus("1\n");  // nothing asks again once the FPGA is known to be down
      EXPECT_EQ(transfer.run(&driver), c.down ? -1 : 0);
      EXPECT_EQ(NewAccesses(), c.down ? Lines{} : Lines{transfer.line + std::string("ok")});
    }
  }
}

TEST(FpgaBus, IoctlChannelReadsInRequestsOf1024) {
  std::vector<uint8_t> cells(1500);
  std::iota(cells.begin(), cells.end(), uint8_t{7});
  board::StoreCells(0, 0x4000, 1500, cells.data());
  std::vector<uint8_t> data(1500);
  EXPECT_GE(ReadFPGABusBlock_tx(0x4000, 1500, data.data(), 0), 0);
  EXPECT_EQ(data, cells);
  std::fill(data.begin(), data.end(), uint8_t{0});
  SetFaultCount(Fault::kSkip, 1);
  SetFaultCount(Fault::kFpgaRead, 1);
  EXPECT_LT(ReadFPGABusBlock_tx(0x4000, 1500, data.data(), 0), 0);
  EXPECT_EQ(data[1023], cells[1023]);
  EXPECT_EQ(data[1024], 0);
}

TEST(StatusProbe, TakesTheFirstLineOfACommand) {
  struct Case {
    const char* command;
    int result;
    const char* text;
    int status;
  };
  const Case cases[] = {
      {"printf 'one\\ntwo\\n'", 0, "one", 0},
      {"printf '15\\r\\n'", 0, "15", 15},
      {"printf '3'", 0, "3", 3},
      {"printf '\\n'", -1, "before", -1},
      {"printf '\\r\\n5'", -1, "before", -1},
      {"true", 0, "before", 0},
      {"exit 3", 0, "before", 0},
  };
  DriverUtil driver;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.command);
    char text[80] = "before";
    EXPECT_EQ(DriverUtil::run_command_return_string(c.command, text, sizeof text), c.result);
    EXPECT_STREQ(text, c.text);
    EXPECT_EQ(driver.ReadFpgaStatus(c.command), c.status);
  }
}

TEST(ClockChip, OutputsAreProgrammedCrosswise) {
  board_kit::Configure("trace = clockchip\n");
  DriverUtil driver;
  EXPECT_EQ(driver.SetClock(0, 148500000), 0);
  EXPECT_EQ(driver.SetClock(1, 74250000), 0);
  EXPECT_EQ(driver.SetClock(200, 1), 0);
  EXPECT_EQ(board_kit::TraceLines(), (Lines{"clockchip 49 148500000 2 3",
                                            "clockchip 33 74250000 1 3", "clockchip 33 1 1 3"}));
  SetFaultCount(Fault::kClockChip, 1);
  EXPECT_EQ(static_cast<uint8_t>(driver.SetClock(0, 1)), 0xFF);
  EXPECT_EQ(driver.SetClock(0, 1), 0);
}

}  // namespace
