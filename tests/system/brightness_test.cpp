// A brightness plan in a running daemon, at two hundred times the speed of the day.
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <mutex>
#include <thread>

#include "process/calc_time.h"
#include "stub/mcucmessagestruct_layout.h"
#include "support/board_kit.h"
#include "support/daemon.h"
#include "support/slow_mix.h"

namespace {

using namespace ZEPH_MCUC;
using Values = std::vector<int>;

constexpr uint32_t kBrightnessOfCards = 0x02000001;
constexpr uint32_t kClock = 0x02000011;
constexpr int64_t kSecond_us = 1'000'000;
constexpr int64_t kStart_s = 1'777'622'370;  // Friday, 1 May 2026, 07:59:30
constexpr int kHours_s = 2 * 3600;

brightness_bytes::Mix Plan() {
  return {.nodes = {{4, 0, false, 0x7F, 20},
                    {8, 0, false, 0x7F, 60},
                    {8, 10, true, 0x7F, 0},
                    {8, 40, false, 0x7F, 50},
                    {9, 10, true, 0x10, 0},  // Fridays, where bit 0 is Monday
                    {9, 40, false, 0x20, 99},
                    {9, 50, false, 0x7F, 70}},
          .sensors = {{0, 0, 0, 1}},
          .map = {{0, 4}, {1024, 30}, {5120, 80}},
          .fallback = 45,
          .interval_s = 20,
          .readings = 3};
}

// The light changes while the plan doesn't look at it.
constexpr int kLightChanges_s = 3600 * 9;
constexpr char kMorning[] = "2048";
constexpr char kForenoon[] = "4608";

// What the rules make of those two hours.
Values Wanted() {
  SlowMix rules(Plan(), kStart_s * kSecond_us);
  Values values;
  while (rules.time_us() < (kStart_s + kHours_s) * kSecond_us) {
    const bool morning = rules.time_us() / kSecond_us % 86'400 < kLightChanges_s;
    const Values sent = rules.Pass(morning ? kMorning : kForenoon);
    values.insert(values.end(), sent.begin(), sent.end());
  }
  return values;
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

// The second of the day that the daemon's clock shows.
int SecondOfDay(quivord::Client& client) {
  const auto reply = client.Call({.address = kClock, .length = 6}, std::chrono::seconds(10));
  if (!reply || reply.value().data.size() != 6) return -1;
  const auto& bcd = reply.value().data;
  return FromBcd(bcd[3]) * 3600 + FromBcd(bcd[4]) * 60 + FromBcd(bcd[5]);
}

// Makes the board's clock show `seconds` now.
void SetClock(int64_t seconds) {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  const int64_t offset =
      seconds * kSecond_us - std::chrono::duration_cast<std::chrono::microseconds>(now).count();
  std::ofstream(board_kit::Named() / "clock", std::ios::binary)
      .write(reinterpret_cast<const char*>(&offset), sizeof offset);
}

TEST(BrightnessAtSpeed, TwoHoursOfAMixSendAndReportWhatTheRulesSay) {
  board_kit::RunTool("create " + board_kit::Named().string());
  board_kit::Configure("speed = 200\ntrace = card\n");
  board_kit::StoreFlash(0xB8B000, Plan().Bytes());
  board_kit::Put("sensors/lux", kMorning);
  board_kit::Put("etc/init.d/flag_fpgaload", "");
  SetClock(kStart_s);
  support::Daemon daemon({.board = board_kit::Named(), .environment = {"TZ=UTC0"}});

  std::mutex mutex;
  Values reported;
  ASSERT_TRUE(daemon.WaitUntilItAnswers()) << daemon.OutputText();
  const auto client = quivord::Client::Connect({.board = daemon.board(),
                                                .id = TaskId(0, task::kOwd),
                                                .on_report = [&](const quivord::Report& report) {
                                                  const std::lock_guard lock(mutex);
                                                  if (report.address == kBrightnessOfCards)
                                                    reported.push_back(report.data.at(0));
                                                }});
  ASSERT_TRUE(client);
  const int end = static_cast<int>(kStart_s % 86'400) + kHours_s;
  bool morning = true;
  for (int now = 0; now < end;) {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    now = SecondOfDay(*client.value());
    ASSERT_GE(now, 0) << "no answer";
    if (morning && now > kLightChanges_s - 600) {
      ASSERT_LT(now, kLightChanges_s + 600) << "the test has slept too long";
      board_kit::Put("sensors/lux", kForenoon);
      morning = false;
    }
  }
  daemon.Kill();

  const Values sent = SentToCards();
  const Values wanted = Wanted();
  EXPECT_EQ(Changes(sent), Changes(wanted));
  EXPECT_NEAR(static_cast<double>(sent.size()), static_cast<double>(wanted.size()), 8);
  const std::lock_guard lock(mutex);
  ASSERT_GT(reported.size(), 100U);
  ASSERT_LE(reported.size(), sent.size());
  EXPECT_TRUE(std::equal(reported.begin(), reported.end(),
                         sent.end() - static_cast<std::ptrdiff_t>(reported.size())));
}

}  // namespace
