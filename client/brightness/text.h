// A brightness plan in words, for `brightness show` and the pictures. Pure; any thread.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "brightness/plan.h"
#include "proto/calc_brightness_time.h"

namespace quivord::brightness {

// "60%", "153 on ports 0, 1", "light sensor".
std::string NodeText(const table::MixNode& node);
std::string NodeText(const table::ListNode& node);

// Times and weekdays of all nodes, in their order; none for the sensor.
struct NodeLine {
  std::string time;
  std::string days;
  std::string what;
  bool inUse = true;
};
std::vector<NodeLine> NodeLines(const Plan& plan);

// What a plan does with the light, in a line; empty for a plan without sensors.
std::string SensingText(const Plan& plan);

// Lines without the last line feed. `now` is the device's clock, where it is known.
std::string ShowText(const Plan& plan, const std::optional<table::Moment>& now);

// The same for programs: the plan as a file has it, and
//   in_force: {node, today}; next: {node, in_min}; null where that isn't known.
nlohmann::ordered_json ShowJson(const Plan& plan, const std::optional<table::Moment>& now);

}  // namespace quivord::brightness
