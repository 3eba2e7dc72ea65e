// The board's configuration: what each key takes, what is refused and how the refusal reads.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "board/settings.h"

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
  const std::vector<std::string> kBadValues = {"slot = 256",
                                               "slot = ",
                                               "slot = -1",
                                               "slot = 1 2",
                                               "slot = 0x",
                                               "card.width = 65536",
                                               "speed = 0",
                                               "speed = 2001",
                                               "speed = 99999999999",
                                               "port.0.cards = many",
                                               "input.0 = 0x10",
                                               "input.0 = 0x10 CGA",
                                               "input.0 = 0x10000 DVI",
                                               "trace = fpga,card",
                                               "trace = all fpga",
                                               "trace ="};
  const std::vector<std::string> kUnknownKeys = {
      "Slot = 1",        "port.16.cards = 1", "port..cards = 1",
      "port.0.card = 1", "port.0 = 1",        "port.0x1.cards = 1",
      "input.16 = none", "input. = none",     "= 1"};
  for (const auto* lines : {&kBadValues, &kUnknownKeys}) {
    for (const std::string& line : *lines) {
      Settings settings, before;
      before.slot = 3;
      const auto fault = ParseSettings("slot = 3\n" + line, "dir/board.conf", settings);
      EXPECT_EQ(fault.find("dir/board.conf:2: "), 0U) << line << ": " << fault;
      const bool unknown = fault.find("unknown key '") != std::string::npos;
      EXPECT_EQ(unknown, lines == &kUnknownKeys) << line << ": " << fault;
      EXPECT_EQ(settings, before) << line;
    }
  }
  Settings settings;
  EXPECT_EQ(ParseSettings("slot", "f", settings), "f:1: a line is 'key = value'");
}

}  // namespace
}  // namespace board
