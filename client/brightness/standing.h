// Where a plan stands at a moment. Pure; any thread.
#pragma once

#include <cstddef>
#include <optional>

#include "brightness/plan.h"
#include "proto/calc_brightness_time.h"

namespace quivord::brightness {

// The node that a start at `now` would take, and the next one that changes something.
struct Standing {
  std::size_t node = 0;
  bool today = true;  // it applies on this weekday, as an arrival counts it
  std::optional<std::size_t> next;
  int next_in_min = 0;  // minutes, up to a week; says nothing without `next`
};

// Nothing where no node is in force.
std::optional<Standing> StandingAt(const Plan& plan, const table::Moment& now);

}  // namespace quivord::brightness
