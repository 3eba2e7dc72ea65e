// Three whole days of a mixed plan, pass by pass, against a second form of its rules.
#include <gtest/gtest.h>
#include <platform/system.h>

#include <cstdlib>
#include <deque>
#include <fstream>

#include "mcuctrace.h"
#include "proto/addr_hardwarebrightnessadjust.h"
#include "stub/mcuqmbthread.h"
#include "support/board_kit.h"
#include "support/brightness_bytes.h"
#include "support/inprocess.h"

namespace {

using namespace ZEPH_MCUC;

constexpr int64_t kSecond_us = 1'000'000;
constexpr int64_t kPass_us = 200'000;
constexpr int64_t kDay_s = 86'400;
constexpr int64_t kStart_s = 1'777'574'405;  // Thursday, 30 April 2026, 18:40:05
constexpr int kPasses = 3 * 86'400 * 5;

constexpr int kSunday0 = 1 << 4;  // Thursday where bit 0 is Sunday
constexpr int kMonday0 = 1 << 4;  // Friday where bit 0 is Monday

// The light of a day, and the hours in which the sensors fail.
std::string LightAt(int64_t seconds) {
  const int64_t second = seconds % kDay_s;
  if (second >= 9 * 3600 && second < 9 * 3600 + 1200) return "fail";
  if (second % 7200 >= 1800 && second % 7200 < 1812) return "fail";
  if (second % 7200 >= 3600 && second % 7200 < 3680) return "fail";
  const int64_t fromNoon = std::abs(second - 43'200);
  const int64_t lux = 24'000 - fromNoon + second / 60 % 5 * 900;
  return std::to_string(lux < 0 ? 0 : lux);
}

brightness_bytes::Mix Plan() {
  return {.nodes = {{0, 30, false, 0x7F, 10},
                    {6, 0, false, kMonday0 | 0x03, 30},
                    {8, 0, true, 0x7F, 0},
                    {12, 0, false, 0x20, 80},
                    {13, 15, false, 0x7F, 99, 0},
                    {14, 0, true, 0x7F, 0},
                    {18, 30, false, kSunday0 | 0x20, 60},
                    {23, 59, false, 0x7F, 5}},
          .sensors = {{0, 0, 0, 1}, {0, 3, 0, 1}},  // nobody answers on port 3
          .map = {{0, 4}, {64, 10}, {2112, 35}, {18496, 90}, {20000, 70}},
          .fallback = 45,
          .interval_s = 20,
          .readings = 3};
}

// The rules a second time, in plain numbers: minutes of the day, days since 1970, and one pass
// after the other.
class SecondForm {
 public:
  explicit SecondForm(int64_t start_us) : plan_(Plan()), time_us_(start_us) {}

  int64_t time_us() const { return time_us_; }

  // The values that one pass sends.
  std::vector<int> Pass(const std::string& light) {
    sent_.clear();
    if (passes_++ == 0) Start();
    const int place = passes_ <= 100 ? passes_ : (passes_ - 101) % 99 + 2;
    if (place % 5 == 0) CountSecond();
    if (place % 10 == 0) LookAtClock();
    if (place % 5 == 0 && place != 100) Act(light);
    time_us_ += kPass_us;
    return sent_;
  }

 private:
  int64_t Second() const { return time_us_ / kSecond_us; }
  int Minute() const { return static_cast<int>(Second() % kDay_s / 60); }
  static int MinuteOf(const brightness_bytes::Node& node) { return node.hour * 60 + node.minute; }

  // 1970 began on a Thursday.
  bool Today(const brightness_bytes::Node& node, int64_t thursday) const {
    return (node.weekdays >> (Second() / kDay_s + thursday) % 7 & 1) != 0;
  }

  void Start() {
    std::size_t node = 0;
    int best = 1441;
    for (std::size_t i = 0; i < plan_.nodes.size(); ++i) {
      const int ago = (Minute() - MinuteOf(plan_.nodes[i]) + 1440) % 1440;
      if (plan_.nodes[i].valid != 0 && ago < best) {
        best = ago;
        node = i;
      }
    }
    armed_ = (node + 1) % plan_.nodes.size();
    if (!Today(plan_.nodes[node], 4)) return;
    if (plan_.nodes[node].sensor) {
      sensing_ = true;
      return;
    }
    Send(plan_.nodes[node].percent * 255 / 100);
    repeating_ = true;
  }

  void CountSecond() {
    if (sensing_ && ++sinceReading_ == plan_.interval_s) {
      sinceReading_ = 0;
      readingDue_ = true;
    }
    if (repeating_ && ++sinceRepeat_ == 600) {
      sinceRepeat_ = 0;
      repeatDue_ = true;
    }
  }

  void LookAtClock() {
    if (Minute() != MinuteOf(plan_.nodes[armed_]) || Second() % 60 > 3) return;
    if (!spent_) nodeDue_ = true;
    spent_ = true;
  }

  void Act(const std::string& light) {
    if (nodeDue_) Arrive();
    if (readingDue_ && sensing_) Read(light);
    if (repeatDue_) sent_.push_back(*last_);
    repeatDue_ = false;
  }

  void Arrive() {
    const brightness_bytes::Node node = plan_.nodes[armed_];
    nodeDue_ = false;
    if (node.valid == 1 && Today(node, 3)) {
      sensing_ = node.sensor;
      repeating_ = !node.sensor;
      readings_.clear();
      if (node.sensor) {
        sinceReading_ = 0;
      } else {
        Go(node.percent * 255 / 100);
        sinceRepeat_ = 0;
      }
      repeatDue_ = false;
    }
    armed_ = (armed_ + 1) % plan_.nodes.size();
    spent_ = false;
  }

  void Read(const std::string& light) {
    readingDue_ = false;
    time_us_ += 2 * 2000;  // both sensors are waited for
    const bool failed = light == "fail";
    readings_.push_back(failed ? -1 : std::atoi(light.c_str()) / 2 * 2);
    faults_ = failed ? faults_ + 1 : 0;
    const bool full = readings_.size() == 3;
    if (faults_ == 3) {
      faults_ = 0;
      readings_.clear();
      Go(plan_.fallback * 255 / 100);
    } else if (full && failed) {
      readings_.clear();
    } else if (full) {
      std::sort(readings_.begin(), readings_.end());
      // A failed one is the largest that the average leaves out; with two nothing is left.
      const int fails = static_cast<int>(std::count(readings_.begin(), readings_.end(), -1));
      if (fails < 2) Go(Percent(fails == 0 ? readings_[1] : readings_[2]) * 255 / 100);
      readings_.clear();
    }
  }

  int Percent(int lux) const {
    const auto& map = plan_.map;
    if (lux >= map.back().lux) return map.back().percent;
    std::size_t right = 1;
    while (map[right].lux < lux) ++right;
    const brightness_bytes::Lux& a = map[right - 1];
    const brightness_bytes::Lux& b = map[right];
    return a.percent + std::max(0, (b.percent - a.percent) * (lux - a.lux) / (b.lux - a.lux));
  }

  void Go(int value) {
    if (!last_.has_value() || *last_ == value) {
      Send(value);
      return;
    }
    while (*last_ != value) {
      Send(*last_ + (*last_ < value ? 1 : -1));
      time_us_ += 50'000;
    }
  }

  void Send(int value) {
    last_ = value;
    sent_.push_back(value);
  }

  const brightness_bytes::Mix plan_;
  int64_t time_us_;
  int passes_ = 0;
  std::vector<int> sent_;
  std::optional<int> last_;
  std::size_t armed_ = 0;
  bool spent_ = false, nodeDue_ = false;
  bool sensing_ = false, readingDue_ = false;
  bool repeating_ = false, repeatDue_ = false;
  int sinceReading_ = 0, sinceRepeat_ = 0, faults_ = 0;
  std::vector<int> readings_;
};

// The board's time; between passes the test moves it, within one the daemon's own waits do.
int64_t BoardTime() {
  timeval now{};
  platform::GetTimeOfDay(&now, nullptr);
  return now.tv_sec * kSecond_us + now.tv_usec;
}

void SetBoardTime(int64_t time_us) {
  timeval now{};
  now.tv_sec = time_us / kSecond_us;
  now.tv_usec = time_us % kSecond_us;
  ASSERT_EQ(platform::SetTimeOfDay(&now, nullptr), 0);
}

// All values that have gone to every card, in order.
std::vector<int> SentToCards() {
  std::vector<int> values;
  for (const std::string& line : board_kit::TraceLines()) {
    unsigned value = 0;
    if (std::sscanf(line.c_str(), "card W 1 255 65535 0x02000001 1 0 %x", &value) == 1) {
      values.push_back(static_cast<int>(value));
    }
  }
  return values;
}

TEST(BrightnessDays, ThreeDaysOfAMixSendWhatTheRulesSay) {
  setenv("TZ", "UTC0", 1);
  g_logLevel = kLogNothing;
  board_kit::Configure("speed = 2000\ntrace = card\n");
  inprocess::Start();
  platform::KeepTime();
  const auto file = Plan().Bytes();
  ASSERT_LE(file.size(), 512U);
  // Stored, as an earlier run left it: the first pass starts it.
  board_kit::StoreFlash(0xB8B000, file);
  SetBoardTime(kStart_s * kSecond_us);

  // Written over in place: a file cut and filled anew thousands of times keeps a disk busy.
  board_kit::Put("sensors/lux", "0\n");
  std::fstream sensor(board_kit::Named() / "sensors/lux");

  SecondForm rules(kStart_s * kSecond_us);
  std::vector<int> wanted;
  std::string light;
  int passesThatSent = 0;
  for (int pass = 0; pass < kPasses; ++pass) {
    const std::string now = LightAt(rules.time_us() / kSecond_us);
    if (now != light) sensor.seekp(0) << now << '\n' << std::flush;
    light = now;
    McuQMBThread::PollingPass();
    SetBoardTime(BoardTime() + kPass_us);
    const auto sent = rules.Pass(light);
    wanted.insert(wanted.end(), sent.begin(), sent.end());
    passesThatSent += sent.empty() ? 0 : 1;
    ASSERT_EQ(BoardTime(), rules.time_us()) << "what was sent in pass " << pass << " differs";
  }
  EXPECT_EQ(SentToCards(), wanted);
  EXPECT_GT(passesThatSent, 500) << "the plan has hardly run";
}

}  // namespace
