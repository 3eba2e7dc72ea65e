#include "brightness/course.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "brightness/words.h"
#include "proto/calc_brightness_lux.h"
#include "proto/calc_brightness_send.h"
#include "proto/calc_brightness_time.h"

namespace quivord::brightness {
namespace {

constexpr int kSunrise = 5 * 60 + 30;
constexpr int kSunset = 20 * 60 + 30;
constexpr double kRampStep_s = 0.05;
constexpr std::uint16_t kUsualNoon = 20'000;

// A moment of a week that began on Monday, 4 May 2026.
table::Moment MomentOf(int day, int minute) {
  table::Moment now;
  now.year = 26;
  now.month = 5;
  now.day = static_cast<std::uint8_t>(4 + day);
  now.hour = static_cast<std::uint8_t>(minute / 60);
  now.minute = static_cast<std::uint8_t>(minute % 60);
  now.weekday = static_cast<std::uint8_t>((day + 1) % kWeekDays + 1);
  return now;
}

// The screen while a plan runs: the values of the ports, and who set them.
class Screen {
 public:
  Screen(const Plan& plan, std::uint16_t noon_lux) : plan_(plan), noon_lux_(noon_lux) {
    for (const auto& node : plan.list) keys_.push_back(table::TimeKey(node.hour, node.minute));
  }

  void Start(const table::Moment& now) {
    if (plan_.kind == Kind::kSensor) {
      minute_.source = Source::kSensor;
    } else if (plan_.kind == Kind::kList) {
      armed_ = table::ListNodeInForce(keys_, table::TimeKey(now));
      ApplyListNode(*armed_);
      ArmNext();
    } else if (const auto node = table::MixNodeInForce(plan_.nodes, table::TimeKey(now));
               node != table::kNoNode) {
      armed_ = node;
      if (table::AppliesAtStart(plan_.nodes[node], now)) ApplyMixNode(plan_.nodes[node]);
      ArmNext();
    }
  }

  // One minute; the node whose time comes in it.
  std::optional<Arrival> Pass(const table::Moment& now) {
    const auto before = minute_.value[0];
    std::optional<Arrival> arrival;
    if (armed_.has_value() && KeyOf(*armed_) == table::TimeKey(now)) arrival = Arrive(now);
    if (minute_.source == Source::kSensor) Follow(now.hour * 60 + now.minute);
    if (arrival.has_value()) FillIn(before, *arrival);
    return arrival;
  }

  const Minute& minute() const { return minute_; }

 private:
  std::uint16_t KeyOf(std::size_t node) const {
    if (plan_.kind == Kind::kList) return keys_[node];
    return table::TimeKey(plan_.nodes[node].hour, plan_.nodes[node].minute);
  }

  void ArmNext() {
    const std::size_t count = plan_.kind == Kind::kList ? keys_.size() : plan_.nodes.size();
    armed_ =
        table::NextInRing(static_cast<std::uint32_t>(*armed_), static_cast<std::uint32_t>(count));
  }

  Arrival Arrive(const table::Moment& now) {
    Arrival arrival;
    arrival.node = *armed_;
    if (plan_.kind == Kind::kList) {
      arrival.applies = true;
      ApplyListNode(*armed_);
    } else {
      const table::MixNode& node = plan_.nodes[*armed_];
      arrival.applies = table::AppliesAtArrival(node, now);
      if (arrival.applies) ApplyMixNode(node);
    }
    ArmNext();
    return arrival;
  }

  // What an arrival has changed, and how.
  void FillIn(std::optional<std::uint8_t> before, Arrival& arrival) const {
    arrival.to = minute_.value[0].value_or(0);
    arrival.from = before.value_or(arrival.to);
    const bool ramps = plan_.kind != Kind::kList && plan_.header.gradual;
    if (ramps) arrival.ramp_s = RampTime(arrival.from, arrival.to);
  }

  static double RampTime(std::uint8_t from, std::uint8_t to) {
    if (from == to) return 0;
    return kRampStep_s * static_cast<double>(table::RampValues(from, to, true).size());
  }

  void ApplyListNode(std::size_t index) {
    const table::ListNode& node = plan_.list[index];
    minute_.source = Source::kFixed;
    for (std::size_t port = 0; port < minute_.value.size(); ++port) {
      if ((node.ports >> port & 1) != 0) minute_.value[port] = node.brightness;
    }
  }

  void ApplyMixNode(const table::MixNode& node) {
    minute_.source = node.sensor ? Source::kSensor : Source::kFixed;
    if (!node.sensor) minute_.value[0] = table::FromPercent(node.percent);
  }

  void Follow(int minuteOfDay) {
    const std::uint16_t lux = DaylightAt(minuteOfDay, noon_lux_);
    if (plan_.kind == Kind::kSensor) {
      if (const auto value = table::LookUpRange(plan_.range, lux)) minute_.value[0] = *value;
    } else if (const auto percent = table::LookUpMap(plan_.map, lux)) {
      minute_.value[0] = table::FromPercent(*percent);
    }
  }

  const Plan& plan_;
  const std::uint16_t noon_lux_;
  std::vector<std::uint16_t> keys_;  // of a list's nodes
  std::optional<std::size_t> armed_;
  Minute minute_;
};

}  // namespace

std::uint16_t DaylightAt(int minuteOfDay, std::uint16_t noon_lux) {
  if (minuteOfDay <= kSunrise || minuteOfDay >= kSunset) return 0;
  const double part = static_cast<double>(minuteOfDay - kSunrise) / (kSunset - kSunrise);
  return static_cast<std::uint16_t>(noon_lux * std::pow(std::sin(part * std::numbers::pi), 1.5));
}

std::uint16_t NoonOf(const Plan& plan) {
  if (plan.kind == Kind::kSensor) return plan.range.mostLux;
  return plan.map.empty() ? kUsualNoon : plan.map.back().lux;
}

Course CourseOf(const Plan& plan, int firstDay, int days, std::uint16_t noon_lux) {
  Course course;
  course.firstDay = firstDay;
  Screen screen(plan, noon_lux);
  screen.Start(MomentOf(firstDay, 0));
  for (int day = -kWeekDays; day < days; ++day) {
    for (int minute = 0; minute < kDayMinutes; ++minute) {
      auto arrival = screen.Pass(MomentOf((firstDay + day + kWeekDays) % kWeekDays, minute));
      if (day < 0) continue;
      if (arrival.has_value()) {
        arrival->minute = day * kDayMinutes + minute;
        course.arrivals.push_back(*arrival);
      }
      course.minutes.push_back(screen.minute());
      course.lux.push_back(DaylightAt(minute, noon_lux));
    }
  }
  return course;
}

std::optional<Reach> ReachOf(const Plan& plan) {
  if (plan.kind == Kind::kSensor) {
    const auto [least, most] = std::minmax(plan.range.atLeast, plan.range.atMost);
    return Reach{least, most};
  }
  if (!IsMixFamily(plan.kind) || plan.map.empty()) return std::nullopt;
  const auto [least, most] = std::ranges::minmax_element(plan.map, {}, &table::LuxItem::percent);
  return Reach{table::FromPercent(least->percent), table::FromPercent(most->percent)};
}

std::string CourseObstacle(const Plan& plan) {
  switch (plan.kind) {
    case Kind::kNone:
      return "there is no plan";
    case Kind::kSerial:
      return "the plan leaves the brightness to an outside device";
    default:
      break;
  }
  if (IsMixFamily(plan.kind) && !plan.header.runs) return "the plan is set not to run";
  if (IsMixFamily(plan.kind) && !plan.header.on) return "the plan is switched off";
  return {};
}

}  // namespace quivord::brightness
