// The board's configuration: what each key takes, what is refused and how the refusal reads.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "board/settings.h"
#include "support/rows.h"

namespace board {
namespace {

TEST(BoardSettings, DefaultTextSaysTheDefaults) {
  Settings settings;
  settings.slot = 9;
  settings.trace_kinds = 1;
  EXPECT_EQ(ParseSettings(DefaultSettingsText(), "board.conf", settings), "");
  EXPECT_EQ(settings, Settings{});
}

TEST(BoardSettings, TakesEveryKeyAndTheLaterLineWins) {
  Settings settings;
  const auto fault = ParseSettings(
      "# a board\n\nslot=0x12 # hex\ncard.width = 0\r\n card.height =65535\nport.15.boxes = 3\n"
      "port.0.cards = 1\nport.0.cards = 2\nport.2.launchers=1\nport.0.multi = 0\n"
      "input.0 = none\ninput.15 = 0xffff SDI12G\nfpga.load_ms = 0\nspeed = 2000\n"
      "trace = fpga  info clock",
      "board.conf", settings);
  EXPECT_EQ(fault, "");
  Settings wanted;
  wanted.slot = 0x12;
  wanted.card_width = 0;
  wanted.card_height = 65535;
  wanted.devices[15][2] = 3;
  wanted.devices[0] = {2, 0, 0, 0};
  wanted.devices[2][3] = 1;
  wanted.inputs[0].reset();
  wanted.inputs[15] = Input{0xFFFF, "SDI12G"};
  wanted.fpga_load_ms = 0;
  wanted.speed = 2000;
  wanted.trace_kinds = 1U << 0 | 1U << 10 | 1U << 6;
  EXPECT_EQ(settings, wanted);
  EXPECT_EQ(ParseSettings("trace = all", "board.conf", settings), "");
  EXPECT_EQ(settings.trace_kinds, 0x7FFU);
}

TEST(BoardSettings, RefusesWithFileLineAndReason) {
  // A line, and how the refusal goes on.
  for (const auto& row : support::Rows(2, R"(
      slot = 256            | bad value
      slot =                | bad value
      slot = 0x             | bad value
      card.width = 65536    | bad value
      speed = 0             | bad value
      speed = 99999999999   | bad value
      port.0.cards = many   | bad value
      input.0 = 0x10        | bad value
      input.0 = 0x10 CGA    | bad value
      trace = fpga,card     | bad value
      trace = all fpga      | bad value
      Slot = 1              | unknown key
      port.16.cards = 1     | unknown key
      port.0.card = 1       | unknown key
      input.16 = none       | unknown key
    )")) {
    Settings settings, before;
    before.slot = 3;
    const auto fault = ParseSettings("slot = 3\n" + row[0], "dir/board.conf", settings);
    EXPECT_TRUE(fault.starts_with("dir/board.conf:2: " + row[1])) << row[0] << ": " << fault;
    EXPECT_EQ(settings, before) << row[0];
  }
  Settings settings;
  EXPECT_EQ(ParseSettings("slot", "f", settings), "f:1: a line is 'key = value'");
}

}  // namespace
}  // namespace board
