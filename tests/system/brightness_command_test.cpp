// quivordctl's brightness commands against a daemon on a board.
#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "board/faults.h"
#include "support/board_kit.h"
#include "support/brightness_bytes.h"
#include "support/ctl.h"
#include "support/on_daemon.h"
#include "support/run.h"

namespace {

using nlohmann::json;

support::RunResult Ctl(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), {support::Built("quivordctl"), "--json", "brightness"});
  return support::Run(arguments);
}

// The objects that a command prints, a line each.
std::vector<json> Objects(const std::vector<std::string>& arguments) {
  const support::RunResult result = Ctl(arguments);
  EXPECT_EQ(result.status, 0) << result.err;
  std::vector<json> objects;
  std::istringstream lines(result.out);
  for (std::string line; std::getline(lines, line);) {
    objects.push_back(support::JsonOf(line));
  }
  return objects;
}

std::string Example(const std::string& kind) {
  return support::Source("examples/brightness-" + std::string(kind) + ".json");
}

class BrightnessCommand : public support::OnDaemon {
 protected:
  void SetUp() override {
    board_kit::Configure("fpga.load_ms = 1\n");
    board_kit::Put("etc/init.d/flag_fpgaload", "");
    Start();
  }

  // The plan once the daemon has loaded it, which it does in its first pass.
  static json Shown(const std::string& kind) {
    json shown = json::object();
    for (int i = 0; i < 100 && shown.value("kind", "") != kind; ++i) shown = Objects({"show"})[0];
    return shown;
  }
};

TEST_F(BrightnessCommand, EveryPlanSurvivesARestart) {
  Shown("none");
  for (const char* kind : {"list", "sensor", "mix", "serial", "hardware"}) {
    SCOPED_TRACE(kind);
    const auto said = Objects({"plan", Example(kind)});
    EXPECT_EQ(said.back()["plan"], kind);
    EXPECT_EQ(said.front()["note"].is_string(), std::string(kind) == "mix");
    const std::string file = File("exported.json");
    Objects({"export", file});
    json before = Shown(kind);
    Restart();
    json after = Shown(kind);
    before.erase("next");  // it comes nearer
    after.erase("next");
    EXPECT_EQ(after, before);
    EXPECT_EQ(Objects({"plan", file}).back()["plan"], kind);
  }
}

TEST_F(BrightnessCommand, APlanThatFlashRefusesIsNoSuccess) {
  Shown("none");
  board::SetFaultCount(board::Fault::kFlashWrite, -1);
  for (const char* kind : {"list", "sensor", "mix"}) {
    const support::RunResult lost = Ctl({"plan", Example(kind)});
    EXPECT_EQ(lost.status, 1) << kind << lost.out;
    EXPECT_NE(lost.err.find("didn't store it"), std::string::npos) << lost.err;
  }
}

TEST_F(BrightnessCommand, ALongFileGoesInPieces) {
  json plan = {{"kind", "mix"}, {"gradual", false}};
  for (int i = 0; i < 50; ++i) {
    char time[8];
    std::snprintf(time, sizeof time, "%02d:%02d", i / 4, i % 4 * 15);
    plan["nodes"].push_back({{"time", time}, {"percent", i}});
  }
  const std::string file = File("plan.json");
  std::ofstream(file) << plan;
  Shown("none");
  const std::vector<json> wanted = {{{"plan", "mix"}, {"bytes", 824}, {"note", nullptr}}};
  EXPECT_EQ(Objects({"plan", file}), wanted);
  plan["nodes"][3]["time"] = "23:00";
  std::ofstream(file) << plan;
  const support::RunResult refused = Ctl({"plan", file});
  EXPECT_EQ(refused.status, 2);
  EXPECT_NE(refused.err.find("node 4 (01:00) does not come after node 3"), std::string::npos)
      << refused.err;
  EXPECT_EQ(Shown("mix")["nodes"][3]["time"], "00:45") << "nothing was sent";
}

TEST_F(BrightnessCommand, SetReachesTheCardsThatAreMeant) {
  const auto brightness = [](std::size_t card) {
    std::ifstream cards(board_kit::Named() / "cards", std::ios::binary);
    cards.seekg(static_cast<std::streamoff>(16 + 32 * card + 8));
    return cards.get();
  };
  EXPECT_EQ(Objects({"set", "60%"})[0],
            (json{{"brightness", 153}, {"port", 255}, {"card", 65535}}));
  EXPECT_EQ(brightness(0), 153);
  EXPECT_EQ(brightness(11), 153);
  Objects({"set", "10", "--port", "1"});
  Objects({"set", "20", "--port", "0", "--card", "2"});
  EXPECT_EQ(brightness(2), 20);
  EXPECT_EQ(brightness(5), 153);
  EXPECT_EQ(brightness(6), 10);
  EXPECT_EQ(Ctl({"set", "256"}).status, 2);
}

TEST_F(BrightnessCommand, PreviewDrawsFileAndDevice) {
  const std::string picture = File("day.png");
  EXPECT_EQ(Ctl({"preview", picture}).status, 1) << "no plan yet";
  Shown("none");
  Objects({"plan", Example("list")});
  Objects({"preview", picture, "--scale", "1"});
  EXPECT_GT(std::filesystem::file_size(picture), 10'000U);
  daemon_->Kill();
  for (const char* kind : {"mix", "sensor", "hardware"}) {
    Objects({"preview", picture, "--week", "--plan", Example(kind), "--day", "sun"});
  }
  EXPECT_EQ(Ctl({"preview", picture}).status, 3);
  EXPECT_EQ(Ctl({"preview", "day.gif", "--plan", Example("mix")}).status, 2);
  EXPECT_EQ(Ctl({"preview", picture, "--plan", Example("mix"), "--day", "today"}).status, 2);
}

}  // namespace
