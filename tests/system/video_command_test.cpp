// quivordctl's video commands against a daemon on a board.
#include <gtest/gtest.h>

#include <csignal>
#include <fstream>

#include "board/files.h"
#include "support/board_kit.h"
#include "support/ctl.h"
#include "support/on_daemon.h"
#include "support/process.h"

namespace {

using nlohmann::json;

using support::Ctl;
using support::CtlJson;

class VideoCommand : public support::OnDaemon {
 protected:
  void SetUp() override { Start(); }

  // The size that a group shows, and the source ID that is current.
  static json Shown(const char* group) {
    const json timing = CtlJson({"edid", "show", "--group", group})["timings"][0];
    return {timing["horizontal"]["active"], timing["vertical"]["active"]};
  }
  static json Current() { return CtlJson({"read", "0x020001A5", "1"})["data"]; }
};

TEST_F(VideoCommand, InputsAreFoundAndShownTheirModes) {
  const support::RunResult before = Ctl({"edid", "show"});
  EXPECT_EQ(before.status, 1) << "no input was looked for yet";
  EXPECT_EQ(Ctl({"edid", "set", "--mode", "1280x720"}).status, 1);

  CtlJson({"feature", "set", "edid-flag", "0x50"});
  const json inputs = CtlJson({"inputs"})["inputs"];
  ASSERT_EQ(inputs.size(), 3U);
  EXPECT_EQ(inputs[0]["edid"]["name"], "ZEPH DUAL_DVI");
  EXPECT_EQ(inputs[1]["edid"]["name"], "ZEPH HDMI1.4");
  EXPECT_EQ(inputs[2]["edid"], nullptr);
  EXPECT_EQ(Current(), "50") << "put back";

  EXPECT_EQ(CtlJson({"edid", "set", "--mode", "1280x720@50", "--group", "1"}),
            json::parse(R"({"group": 1, "width": 1280, "height": 720, "rate_hz": 50.0})"));
  EXPECT_EQ(Shown("1"), (json{1280, 720}));
  EXPECT_EQ(Shown("0"), (json{1920, 1080}));
  EXPECT_EQ(Current(), "50");
}

TEST_F(VideoCommand, AnEdidIsSavedAndWritten) {
  CtlJson({"inputs"});
  CtlJson({"edid", "set", "--mode", "2560x1080@60"});
  CtlJson({"edid", "save", File("saved.bin")});
  const std::string saved = board::ReadWhole(File("saved.bin")).value_or("");
  EXPECT_EQ(saved, board::ReadWhole(board_kit::Named() / "inputs/0000.edid"));
  EXPECT_EQ(CtlJson({"edid", "show", File("saved.bin")})["valid"], true);

  CtlJson({"edid", "write", File("saved.bin"), "--group", "1"});
  EXPECT_EQ(Shown("1"), (json{2560, 1080}));

  board_kit::Put("short.bin", saved.substr(0, 100));
  board_kit::Put("spoilt.bin", saved.substr(0, 60) + "x" + saved.substr(61));
  EXPECT_EQ(Ctl({"edid", "show", File("saved.bin"), "--group", "1"}).status, 2) << "one or other";
  for (const char* name : {"short.bin", "spoilt.bin", "missing.bin"}) {
    EXPECT_EQ(Ctl({"edid", "write", File(name)}).status, 2) << name;
  }
}

TEST_F(VideoCommand, AModeThatTheInputNeverShowsIsTold) {
  CtlJson({"inputs"});
  ASSERT_EQ(board_kit::RunTool("fault edid-write 1").status, 0);
  const support::RunResult result = Ctl({"edid", "set", "--mode", "1280x720"});
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.err.find("the input shows 1920 × 1080"), std::string::npos) << result.err;
}

TEST_F(VideoCommand, AnInterruptedCommandPutsTheInputBack) {
  CtlJson({"inputs"});
  ASSERT_EQ(board_kit::RunTool("fault edid-write 1").status, 0);
  support::Process setting({.command = {support::Built("quivordctl"), "edid", "set", "--mode",
                                        "1280x720", "--group", "1"}});
  while (Current() != "62") ASSERT_FALSE(setting.Wait(std::chrono::milliseconds(20)));
  setting.Signal(SIGINT);
  EXPECT_EQ(setting.Wait(std::chrono::seconds(30)), 128 + SIGINT);
  EXPECT_EQ(Current(), "00");
}

TEST(VideoTools, TimingAndScaleAskNoDevice) {
  const json table = CtlJson({"timing", "1920x1080@59.94"});
  EXPECT_EQ(table["from"], "table");
  EXPECT_EQ(table["name"], "MD_1920X1080_60");
  EXPECT_EQ(table["descriptor"], "f439801871382d40582c4500000000000018");
  EXPECT_EQ(table["output"]["hs_total"], 1040);
  const json calculated = CtlJson({"timing", "1280x1024@70"});
  EXPECT_EQ(calculated["from"], "calculation");
  EXPECT_EQ(calculated["timing"]["vertical"]["sync"], 7);
  EXPECT_EQ(CtlJson({"timing", "7680x4320"})["descriptor"], nullptr);
  EXPECT_EQ(Ctl({"timing", "1920"}).status, 2);

  const std::string picture = (board_kit::Named() / "scale.svg").string();
  const json scale = CtlJson({"scale", "--source", "1920x1080", "--layer", "960x540+100+50",
                              "--output", "1920x1080", "--draw", picture});
  EXPECT_EQ(scale["front"]["h_ratio"], (1919U << 16) / 959);
  EXPECT_EQ(scale["back"]["placed"], (json{{"x", 100}, {"y", 50}}));
  EXPECT_NE(board::ReadWhole(picture).value_or("").find("<svg"), std::string::npos);
  EXPECT_EQ(Ctl({"scale", "--source", "9x9", "--layer", "9x9+9+9", "--output", "5x5"}).status, 1);
  EXPECT_EQ(Ctl({"scale", "--source", "9", "--layer", "9x9"}).status, 2);
  EXPECT_EQ(Ctl({"scale", "--source", "9x9-1+0", "--layer", "9x9"}).status, 2);
  EXPECT_EQ(Ctl({"scale", "--source", "9x9", "--layer", "9x9", "--draw", "x.txt"}).status, 2);
}

}  // namespace
