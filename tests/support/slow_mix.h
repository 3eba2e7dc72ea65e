// The rules of a mixed plan a second time, in plain numbers: minutes of the day, days since 1970,
// and one pass of the loop after the other. Three readings an average, gradual changes, a fallback.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "support/brightness_bytes.h"

class SlowMix {
 public:
  SlowMix(brightness_bytes::Mix plan, std::int64_t start_us)
      : plan_(std::move(plan)), time_us_(start_us) {}

  std::int64_t time_us() const { return time_us_; }

  // The values that one pass sends.
  std::vector<int> Pass(const std::string& light) {
    sent_.clear();
    if (passes_++ == 0) Start();
    const int place = passes_ <= 100 ? passes_ : (passes_ - 101) % 99 + 2;
    if (place % 5 == 0) CountSecond();
    if (place % 10 == 0) LookAtClock();
    if (place % 5 == 0 && place != 100) Act(light);
    time_us_ += 200'000;
    return sent_;
  }

 private:
  std::int64_t Second() const { return time_us_ / 1'000'000; }
  int Minute() const { return static_cast<int>(Second() % 86'400 / 60); }
  static int MinuteOf(const brightness_bytes::Node& node) { return node.hour * 60 + node.minute; }

  // 1970 began on a Thursday.
  bool Today(const brightness_bytes::Node& node, std::int64_t thursday) const {
    return (node.weekdays >> (Second() / 86'400 + thursday) % 7 & 1) != 0;
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
    time_us_ += 2000 * static_cast<std::int64_t>(plan_.sensors.size());  // each is waited for
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
  std::int64_t time_us_;
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
