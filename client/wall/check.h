// What a device would refuse of a wall, told before anything is sent.
//
// Pure, any thread.
#pragma once

#include <optional>
#include <string>

#include "wall/model.h"

namespace quivord::wall {

// Why a device would not lay out this wall, in one sentence without a full stop that names the way
// out; nothing where it would. What depends on the size of the cards is left to the device.
std::optional<std::string> SmartObstacle(const Smart& smart);
std::optional<std::string> AdvancedObstacle(const PortRecords& records);

}  // namespace quivord::wall
