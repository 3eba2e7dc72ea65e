// What a device holds once it has laid out a wall, by the daemon's own calculations: to see whether
// a device is there already, and what keeps it from it.
//
// Pure, any thread.
#pragma once

#include <optional>
#include <string>

#include "wall/model.h"

namespace quivord::wall {

// Lays the wall out in `bytes`, for cards of the size that they tell: record, sizes, windows,
// counts and tables. What a layout leaves alone stays as it was. For walls that have no obstacle.
void ApplySmart(const Smart& smart, DeviceBytes& bytes);
void ApplyAdvanced(const PortRecords& records, DeviceBytes& bytes);

// The first thing that `found` holds and `wanted` doesn't, in words; nothing where they are equal.
std::optional<std::string> Difference(const DeviceBytes& found, const DeviceBytes& wanted);

}  // namespace quivord::wall
