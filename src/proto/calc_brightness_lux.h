// From light to brightness: what a sensor says, averages that forgive a bad reading, and the two
// maps. Pure.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "proto/calc_brightness_table.h"

namespace ZEPH_MCUC::brightness {

inline constexpr std::size_t kSensorReplySize = 5;

// What asks the sensor at `address`.
std::array<uint8_t, 11> SensorRequest(uint8_t address);

// Lux of a reply, 0 to 0xFFFE; nothing where the reply isn't good.
std::optional<uint16_t> LuxOfReply(std::span<const uint8_t, kSensorReplySize> reply);

// Marks a reading that failed; it never counts.
inline constexpr uint16_t kNoReading = 0xFFFF;

// The average of `readings` without the smallest and the largest, where there are three or more.
// Sorts them in place. Nothing where none counts.
std::optional<uint16_t> TrimmedAverage(std::span<uint16_t> readings);

// Brightness 0 to 255 by steps; above the last step it is that at the most lux. Nothing for 0 steps
// or more than 32.
std::optional<uint8_t> LookUpRange(const LuxRange& range, uint16_t lux);

// Percent, between two items of the map by a straight line; on a falling stretch the value of its
// left end. The items rise in lux. Nothing for an empty map, or one of more than 32 items.
std::optional<uint8_t> LookUpMap(std::span<const LuxItem> items, uint16_t lux);

}  // namespace ZEPH_MCUC::brightness
