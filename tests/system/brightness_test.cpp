// A brightness plan in a running daemon, at two hundred times the speed of the day.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <mutex>
#include <numeric>
#include <thread>

#include "stub/mcucmessagestruct_layout.h"
#include "support/board_kit.h"
#include "support/brightness_bytes.h"
#include "support/daemon.h"

namespace {

using namespace ZEPH_MCUC;
using Values = std::vector<int>;

constexpr uint32_t kBrightnessOfCards = 0x02000001;
constexpr int64_t kStart_s = 1'777'622'370;  // Friday, 1 May 2026, 07:59:30

// Makes the board's clock show `seconds` now.
void SetClock(int64_t seconds) {
  using std::chrono::microseconds;
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  const int64_t offset =
      seconds * 1'000'000 - std::chrono::duration_cast<microseconds>(now).count();
  std::ofstream(board_kit::Named() / "clock", std::ios::binary)
      .write(reinterpret_cast<const char*>(&offset), sizeof offset);
}

Values SentToCards() {
  Values values;
  for (const std::string& line : board_kit::TraceLines()) {
    unsigned value = 0;
    if (std::sscanf(line.c_str(), "card W 1 255 65535 0x02000001 1 0 %x", &value) == 1) {
      values.push_back(static_cast<int>(value));
    }
  }
  return values;
}

// Without what only says the same again: how often that is depends on the second of the start.
Values Changes(Values values) {
  values.erase(std::unique(values.begin(), values.end()), values.end());
  return values;
}

// A start, a node that arrives and ramps, and a node that hands over to the sensor, which ramps on:
// all of it reaches the cards in order, and the service daemon hears of it.
TEST(BrightnessAtSpeed, AMixRunsThroughItsNodesAndIsReported) {
  const brightness_bytes::Mix plan{
      .nodes = {{4, 0, false, 0x7F, 20}, {8, 0, false, 0x7F, 60}, {8, 5, true, 0x7F, 0}},
      .sensors = {{0, 0, 0, 1}},
      .map = {{0, 4}, {5120, 80}},
      .interval_s = 20,
      .readings = 3};
  constexpr int kFirst = 51, kLast = 204;
  board_kit::RunTool("create " + board_kit::Named().string());
  board_kit::Configure("speed = 200\ntrace = card\n");
  board_kit::StoreFlash(0xB8B000, plan.Bytes());
  board_kit::Put("sensors/lux", "5120");
  board_kit::Put("etc/init.d/flag_fpgaload", "");
  SetClock(kStart_s);
  support::Daemon daemon({.board = board_kit::Named(), .environment = {"TZ=UTC0"}});
  ASSERT_TRUE(daemon.WaitUntilItAnswers()) << daemon.OutputText();

  std::mutex mutex;
  Values reported;
  const auto client = quivord::Client::Connect({.board = daemon.board(),
                                                .id = TaskId(0, task::kOwd),
                                                .on_report = [&](const quivord::Report& report) {
                                                  const std::lock_guard lock(mutex);
                                                  if (report.address == kBrightnessOfCards)
                                                    reported.push_back(report.data.at(0));
                                                }});
  ASSERT_TRUE(client);
  const auto arrived = [&] {
    const std::lock_guard lock(mutex);
    return !reported.empty() && reported.back() == kLast;
  };
  for (int look = 0; look < 3000 && !arrived(); ++look) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  daemon.Kill();

  Values wanted(kLast - kFirst + 1);
  std::iota(wanted.begin(), wanted.end(), kFirst);
  EXPECT_EQ(Changes(SentToCards()), wanted);
  const std::lock_guard lock(mutex);
  const Values heard = Changes(reported);
  ASSERT_GT(heard.size(), 50U) << "those from when the service daemon joined";
  ASSERT_LE(heard.size(), wanted.size());
  EXPECT_TRUE(std::equal(heard.rbegin(), heard.rend(), wanted.rbegin()));
}

}  // namespace
