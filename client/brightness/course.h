// The course of a day or a week under a plan, minute by minute, as the daemon's own calculations
// make it. The plan has then run for a week: what a start does differently is over. Pure; any
// thread.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "brightness/plan.h"

namespace quivord::brightness {

inline constexpr int kDayMinutes = 24 * 60;
inline constexpr int kWeekDays = 7;

// Where a minute's brightness comes from.
enum class Source : std::uint8_t { kNothing, kFixed, kSensor };

struct Minute {
  Source source = Source::kNothing;
  // 0 to 255 on ports 0 to 3; a mix and the sensor have one value for all ports, the first.
  std::array<std::optional<std::uint8_t>, 4> value = {};
};

// A node whose time comes.
struct Arrival {
  int minute = 0;  // since the course's beginning
  std::size_t node = 0;
  bool applies = false;           // today; else the screen stays as it is
  double ramp_s = 0;              // how long the change takes; 0 for a change at once
  std::uint8_t from = 0, to = 0;  // of a change to a fixed brightness
};

struct Course {
  int firstDay = 0;  // weekday of the first minute, 0 for Monday
  std::vector<Minute> minutes;
  std::vector<Arrival> arrivals;
  std::vector<std::uint16_t> lux;  // the light that was taken for granted, a value a minute

  int days() const { return static_cast<int>(minutes.size()) / kDayMinutes; }
};

// Light of a clear day: dark until half past five and from half past eight in the evening on,
// `noon_lux` in the middle.
std::uint16_t DaylightAt(int minuteOfDay, std::uint16_t noon_lux);

// The light at noon for which the whole of a plan's map is passed.
std::uint16_t NoonOf(const Plan& plan);

// The course of `days` from weekday `firstDay` on, 0 for Monday. A course without a value says that
// the plan gives none.
Course CourseOf(const Plan& plan, int firstDay, int days, std::uint16_t noon_lux);

// What the sensor can make of a screen, 0 to 255; nothing for a plan without one.
struct Reach {
  std::uint8_t least = 0;
  std::uint8_t most = 0;
};
std::optional<Reach> ReachOf(const Plan& plan);

// Why there is no course to be drawn; empty where there is one.
std::string CourseObstacle(const Plan& plan);

}  // namespace quivord::brightness
