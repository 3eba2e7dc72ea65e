// quivordctl's wall commands against a daemon on a board.
#include <gtest/gtest.h>

#include "support/ctl.h"
#include "support/on_daemon.h"
#include "support/wall_bytes.h"
#include "wall/text.h"

namespace {

using nlohmann::json;
using quivord::wall::Smart;

// What a wall command that has to succeed gives.
json Object(std::vector<std::string> words) {
  words.insert(words.begin(), "wall");
  return support::CtlJson(words);
}

// What a device with the wall shows.
json Shown(const Smart& smart) {
  return quivord::wall::ShowJson(quivord::wall::Understand(*wall_bytes::With(smart)));
}

std::vector<std::string> Configure(const Smart& smart) {
  return support::WordsOf("configure --wait --rows " + std::to_string(smart.rows) + " --columns " +
                          std::to_string(smart.columns) + " --cables " +
                          std::to_string(smart.mode) + " --per-cable " +
                          std::to_string(smart.perCable));
}

class WallCommand : public support::OnDaemon {
 protected:
  void SetUp() override {
    board_kit::Put("etc/init.d/flag_fpgaload", "");
    Start();
  }
};

TEST_F(WallCommand, ASmartWallComesBackAsItWasAskedForAndOutlivesAPowerCut) {
  const Smart wall{.rows = 5, .columns = 3, .perCable = 5, .mode = 4};
  EXPECT_EQ(Object(Configure(wall)), Shown(wall));
  EXPECT_EQ(Object({"export", File("wall.json")})["file"], File("wall.json"));

  const Smart other{.rows = 2, .columns = 9, .perCable = 3, .mode = 3};
  EXPECT_EQ(Object(Configure(other)), Shown(other));
  EXPECT_EQ(Object({"configure", File("wall.json"), "--wait"}), Shown(wall));

  Restart();
  EXPECT_EQ(Object({"show"}), Shown(wall));
}

TEST_F(WallCommand, AnAdvancedWallIsPlacedDrawnAndExported) {
  const json wall = {
      {"kind", "advanced"},
      {"ports",
       {{{"port", 0}, {"cables", "top-left-rows"}, {"rows", 2}, {"columns", 2}, {"x", 0}, {"y", 0}},
        {{"port", 7},
         {"cables", "bottom-right-columns"},
         {"rows", 3},
         {"columns", 1},
         {"x", 300},
         {"y", 40}}}}};
  board_kit::Put("wall.json", wall.dump());
  const json shown = Object({"advanced", File("wall.json")});
  EXPECT_EQ(shown["screen"], json({{"width", 428}, {"height", 424}}));
  ASSERT_EQ(shown["ports"].size(), 2U);
  EXPECT_EQ(shown["ports"][1]["window"],
            json({{"x", 300}, {"y", 40}, {"width", 128}, {"height", 384}}));
  EXPECT_EQ(Object({"export"}), wall);
  EXPECT_EQ(Object({"draw", File("wall.png")})["file"], File("wall.png"));
  EXPECT_GT(std::filesystem::file_size(File("wall.png")), 1000U);
}

TEST_F(WallCommand, RefusesInWords) {
  board_kit::Put("advanced.json", R"({"kind": "advanced", "ports": []})");
  board_kit::Put("smart.json", R"({"kind": "smart", "rows": 1, "columns": 1, "cables": 0,
                                   "per_cable": 1})");
  for (const auto& row : support::Rows(3, R"(
      configure --rows 4 --columns 5 --cables 0 --per-cable 1   | 1 | at least 2
      configure --rows 0 --columns 5 --cables 0 --per-cable 1   | 2 | --rows is a number from 1 to 255
      configure --rows 1 --columns 5 --cables 0 --per-cable 513 | 2 | --per-cable is a number from 1
      configure --rows 4 --columns 5 --cables 0                 | 2 | give --per-cable too; see quivordctl wall configure --help
      configure                                                 | 2 | give a FILE, or --rows
      configure --rows 256 --columns 1 --cables 0 --per-cable 1 | 2 | --rows
      configure %/smart.json --rows 4                           | 2 | leave out the numbers
      configure %/advanced.json                                 | 2 | wall advanced
      configure %/missing.json                                  | 2 | missing.json can't be read: No such
      advanced %/advanced.json                                  | 1 | no port
      advanced %/smart.json                                     | 2 | wall configure
      export                                                    | 1 | not configured
      draw wall.gif                                             | 2 | .png or .svg
      draw /nowhere/wall.png                                    | 2 | wall.png can't be written: No such
      show --device receiver                                    | 2 | --device
    )")) {
    const auto run = support::ExpectCtl(row, {"--json", "wall"});
    EXPECT_EQ(std::to_string(json::parse(run.out, nullptr, false)["status"].get<int>()), row[1]);
  }
  daemon_.reset();
  EXPECT_EQ(support::Ctl({"wall", "show"}).status, 3);
}

}  // namespace
