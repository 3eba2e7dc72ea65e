// The client's commands about the picture against a running daemon: what they set shows in FPGA and
// store, what can't be is refused before it is sent, and what doesn't last is said.
#include <gtest/gtest.h>

#include <fstream>

#include "board/cells.h"
#include "proto/calc_curves.h"
#include "support/board_kit.h"
#include "support/ctl.h"
#include "support/device.h"
#include "support/on_daemon.h"

namespace {

using nlohmann::json;
using ZEPH_MCUC::GammaTable;

constexpr auto Out = &support::CtlOut;
constexpr auto Json = &support::CtlJson;

class CtlColour : public support::OnDaemon {
 protected:
  void SetUp() override { Start(); }

  static std::string Tables() {
    return device::Fpga(0x700000, 8192) + device::Fpga(0x710000, 8192) +
           device::Fpga(0x720000, 8192);
  }

  static std::string Thrice(const GammaTable& table) {
    const std::string one = device::Hex(table);
    return one + one + one;
  }
};

TEST_F(CtlColour, ModesAreChosenShownAndForgottenByARestart) {
  EXPECT_EQ(Json({"hdr", "show"}).at("mode"), "off");
  EXPECT_EQ(Json({"hdr", "show"}).at("fpga"), "unknown");
  const json hdr10 = Json({"hdr", "hdr10", "--peak", "1200", "--ambient", "50", "--low-gray", "9"});
  EXPECT_EQ(hdr10, (json{{"mode", "hdr10"},
                         {"peak", 1200},
                         {"ambient", 50},
                         {"low_gray", 9},
                         {"class", 4},
                         {"fpga", "hdr"},
                         {"kept", false}}));
  EXPECT_EQ(device::Fpga(0x500109, 1), "5a");
  const std::string hlg = Out({"hdr", "hlg", "--class", "2"});
  EXPECT_TRUE(hlg.starts_with("HLG of class 2, 600 cd/m2\nNot kept")) << hlg;
  EXPECT_EQ(Json({"gamma", "show"}).at("red").at("curve"), "HLG of class 2");
  Restart();
  const std::string left = Out({"hdr", "show"});
  EXPECT_TRUE(left.starts_with("HDR is off\nThe FPGA is still set for an HDR mode")) << left;
  // The restore of a loaded FPGA writes what the store holds over both switches.
  board::StoreCells(1, 0x500109, 1, std::array<std::uint8_t, 1>{}.data());
  board::StoreCells(1, 0x1EA, 1, std::array<std::uint8_t, 1>{}.data());
  EXPECT_TRUE(Out({"hdr", "show"}).starts_with("HDR is off\nNo mode was chosen"));
  EXPECT_EQ(Out({"hdr", "off"}), "HDR is off");
  EXPECT_EQ(device::Fpga(0x1EA, 1), "ff");
  EXPECT_EQ(Tables(), Thrice(ZEPH_MCUC::GammaTable_x()));
  Out({"write", "0x02200117", "0x33"});
  EXPECT_TRUE(Out({"hdr", "show"}).starts_with("HDR type 51, which is no mode\n"));
  EXPECT_EQ(Json({"gamma", "upload", "--exponent", "2"}).at("loaded"), false);
}

TEST_F(CtlColour, SettingsKeepWhatIsNotGiven) {
  EXPECT_TRUE(Out({"picture"}).starts_with("saturation 50, contrast 50, hue 0\nNobody has set it"));
  const json first = Json({"picture", "set", "--saturation", "60", "--hue", "-5"});
  EXPECT_EQ(first, (json{{"saturation", 60}, {"contrast", 50}, {"hue", 355}, {"set", true}}));
  Out({"picture", "set", "--contrast", "0"});
  EXPECT_EQ(Out({"picture"}), "saturation 60, contrast 0, hue 355");
  EXPECT_EQ(device::Fpga(0xD00000, 18), std::string(36, '0'));  // no contrast, no light
  Out({"picture", "set", "--saturation", "0", "--hue", "0"});   // all zeros, and set all the same
  EXPECT_EQ(Out({"picture"}), "saturation 0, contrast 0, hue 0");

  EXPECT_EQ(Out({"warmup"}), "no warm-up is set");
  EXPECT_EQ(support::Ctl({"warmup", "set", "--mode", "1"}).status,
            2);  // the time would be anything
  Out({"warmup", "set", "--mode", "1", "--time", "60"});
  Restart();
  Out({"warmup", "set", "--time", "70"});
  EXPECT_EQ(Json({"warmup"}), (json{{"mode", 1}, {"time", 70}}));
}

TEST_F(CtlColour, UploadStoresLoadsAndSaysWhatLasts) {
  const GammaTable ten = ZEPH_MCUC::PowerTable(2.4, 10);
  const GammaTable twelve = ZEPH_MCUC::PowerTable(2.2, 12);
  EXPECT_EQ(Json({"gamma", "upload", "--exponent", "2.4"}),
            (json{{"depth", 10}, {"loaded", true}}));
  EXPECT_EQ(Tables(), Thrice(ten));
  EXPECT_EQ(device::Flash(0xD12000, 1), "18");  // 24 tenths
  const std::string text = Out({"gamma", "upload", "--exponent", "2.2", "--depth", "12"});
  EXPECT_NE(text.find("upload this one again"), std::string::npos) << text;
  EXPECT_EQ(Tables(), Thrice(twelve));
  EXPECT_EQ(Json({"gamma", "load"}).at("blue"), "a power of 2.40");
  EXPECT_EQ(Tables(), Thrice(ten));

  Out({"gamma", "upload", "--exponent", "2.2", "--depth", "12"});
  EXPECT_EQ(Json({"gamma", "load"}).at("blue"),
            "a power of 2.40");  // the switch says default already
  EXPECT_EQ(Tables(), Thrice(ten));

  Out({"hdr", "hlg"});
  EXPECT_EQ(Json({"gamma", "upload", "--exponent", "1.8"}).at("loaded"), false);
  EXPECT_EQ(Json({"gamma", "load"}).at("was"), "hlg");
  EXPECT_EQ(Tables(), Thrice(ZEPH_MCUC::PowerTable(1.8, 10)));
}

TEST_F(CtlColour, UploadTakesAFileAndDrawShowsIt) {
  std::ofstream(File("gamma.csv")) << [] {
    std::string lines = "# red, green, blue\n";
    for (int i = 0; i < 1024; ++i)
      lines += std::to_string(64 * i) + ", 0 ," + std::to_string(i) + "\n";
    return lines;
  }();
  Out({"gamma", "upload", "--exponent", "2.4"});
  Out({"gamma", "upload", File("gamma.csv")});
  EXPECT_EQ(Json({"gamma", "show"}).at("exponents"), json::object());  // the one before is gone
  EXPECT_EQ(device::Fpga(0x700000 + 8188, 4), "c0ffc0ff");
  EXPECT_EQ(device::Fpga(0x710000 + 8188, 4), "00000000");
  EXPECT_EQ(device::Fpga(0x720000 + 8, 4), "01000100");
  for (const char* name : {"gamma.png", "gamma.svg"}) {
    EXPECT_EQ(Json({"gamma", "draw", File(name)}).at("file"), File(name));
    EXPECT_GT(std::filesystem::file_size(File(name)), 5000U);
  }
}

TEST_F(CtlColour, PatternsAreSentWholeAndDrawnOnTheWall) {
  board::StoreCells(1, 0xA00012, 2, std::array<std::uint8_t, 2>{0xC1, 0xC2}.data());
  EXPECT_EQ(Out({"pattern", "pixel", "--every-x", "8", "--every-y", "10", "--first-x", "3"}),
            "a pixel every 8 by 10, the first at 3, 0");
  EXPECT_EQ(device::Fpga(0xA0000E, 4) + device::Fpga(0xA00020, 9),
            "03000000"
            "0108000a0005000000");
  EXPECT_EQ(device::Fpga(0xA00012, 2), "c1c2");  // what isn't ours stays
  EXPECT_EQ(Json({"pattern", "block", "--width", "64", "--height", "32", "--first-x", "-30"}),
            (json{{"pattern", "block"}, {"step", {64, 32}}, {"first", {34, 0}}}));
  Out({"wall", "draw", "--pattern", File("pattern.png")});
  EXPECT_GT(std::filesystem::file_size(File("pattern.png")), 5000U);
  EXPECT_EQ(Out({"pattern", "off"}), "no pattern");
  EXPECT_EQ(support::Ctl({"wall", "draw", "--pattern", File("pattern.png")}).status, 1);
}

TEST_F(CtlColour, WhatCannotBeIsRefusedBeforeItIsSent) {
  board_kit::Put("falling.csv", [] {
    std::string lines;
    for (int i = 4095; i >= 0; --i) lines += std::to_string(i) + "\n";
    return lines;
  }());
  board_kit::Put("short.csv", "1\n2\n");
  board_kit::Put("words.csv", "one\n");
  board_kit::Put("short.bin", std::string(8191, '\0'));
  const std::string before = device::Fpga(0xA00000, 64) + Tables();
  for (const char* words :
       {"hdr hdr10 --peak 0", "hdr hdr10 --ambient 256", "hdr hlg --class 7",
        "picture set --saturation 101", "picture set --hue 360",
        "pattern pixel --every-x 8 --every-y 8 --first-x 8", "pattern block --width 0 --height 8",
        "pattern block --width 8 --height 8 --first-y -8", "gamma upload",
        "gamma upload --exponent 2 --depth 11", "gamma upload %/falling.csv",
        "gamma upload %/short.csv", "gamma upload %/words.csv", "gamma upload %/short.bin",
        "gamma upload %/missing.csv", "gamma draw %/gamma.gif", "--device receiver hdr off"}) {
    const auto run = support::ExpectCtl({words, "2"});
    EXPECT_TRUE(run.err.starts_with("quivordctl: ")) << run.err;
  }
  EXPECT_EQ(device::Fpga(0xA00000, 64) + Tables(), before);
}

}  // namespace
