// A brightness plan as a file: JSON that says its kind. docs/brightness.md has an example of each.
//
//   {"kind": "list", "nodes": [{"time": "08:00", "brightness": 153, "ports": [0, 1]}]}
//   {"kind": "sensor", "sensors": [{"port": 0, "card": 0, "address": 1}],
//    "dark": {"lux": 10, "brightness": 30}, "bright": {"lux": 1000, "brightness": 255}, "steps":
//    16}
//   {"kind": "mix", "gradual": true,
//    "nodes": [{"time": "08:00", "sensor": true}, {"time": "20:00", "percent": 40}],
//    "sensors": [{"port": 0, "card": 0, "address": 1}], "reading": {"interval_s": 20, "readings":
//    3}, "lux_map": [{"lux": 10, "percent": 10}, {"lux": 2000, "percent": 90}], "fallback": 45}
//
// Kinds serial and hardware look like the mix; serial needs no nodes. A brightness is 0 to 255, or
// a text as "60%". Pure but for the text that is given; any thread.
#pragma once

#include <nlohmann/json.hpp>
#include <string_view>

#include "brightness/plan.h"
#include "quivord/result.h"

namespace quivord::brightness {

// Understands the text of a file. What is missing, of a wrong type, out of range, out of order or
// unknown is kWrongUse and named.
Result<Plan> ParsePlan(std::string_view text);

// The other way round; what `ParsePlan` makes of it has the same table. A plan that a device holds
// may be one that `ParsePlan` refuses.
nlohmann::ordered_json PlanJson(const Plan& plan);

// The text of a file for `plan`: a node, a sensor or an entry of the map a line.
std::string FileText(const Plan& plan);

}  // namespace quivord::brightness
