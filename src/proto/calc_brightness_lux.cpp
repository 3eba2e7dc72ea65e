#include "proto/calc_brightness_lux.h"

#include <algorithm>

namespace ZEPH_MCUC::brightness {
namespace {

constexpr uint8_t kGood = 0x80;  // of the third byte of a reply
constexpr std::size_t kFewestTrimmed = 3;
constexpr uint16_t kBrightDaylight = 60000;  // lux above it shows as the map's end

// The value at `lux` between two neighbours that enclose it.
uint8_t Between(const LuxItem& left, const LuxItem& right, uint16_t lux) {
  if (left.lux == right.lux) return right.percent;
  const double part =
      static_cast<double>(lux - left.lux) / static_cast<double>(right.lux - left.lux);
  const double rise = part * (right.percent - left.percent);
  return static_cast<uint8_t>(left.percent + static_cast<uint32_t>(std::max(rise, 0.0)));
}

}  // namespace

std::array<uint8_t, 11> SensorRequest(uint8_t address) {
  return {address, 0, 0, 0, 0x55, 0xAA, 0x01, 0x02, 0x80, 0xFF, 0x81};
}

std::optional<uint16_t> LuxOfReply(std::span<const uint8_t, kSensorReplySize> reply) {
  if (reply[0] != 1 || reply[1] != 2 || (reply[2] & kGood) == 0) return std::nullopt;
  const int half = reply[3] | (reply[2] & ~kGood) << 8;
  return static_cast<uint16_t>(half * 2);
}

std::optional<uint16_t> TrimmedAverage(std::span<uint16_t> readings) {
  std::span<const uint16_t> counted = readings;
  if (readings.size() >= kFewestTrimmed) {
    std::sort(readings.begin(), readings.end());
    counted = counted.subspan(1, counted.size() - 2);
  }
  uint32_t sum = 0;
  uint32_t count = 0;
  for (const uint16_t reading : counted) {
    if (reading == kNoReading) continue;
    sum += reading;
    ++count;
  }
  if (count == 0) return std::nullopt;
  return static_cast<uint16_t>(sum / count);
}

std::optional<uint8_t> LookUpRange(const LuxRange& range, uint16_t lux) {
  if (range.steps == 0 || range.steps > sensor::kMostSteps) return std::nullopt;
  if (lux >= range.mostLux) return range.atMost;
  if (lux <= range.leastLux) return range.atLeast;
  const int grid = (range.mostLux - range.leastLux) / range.steps;
  const int step = grid == 0 ? range.steps : (lux - range.leastLux) / grid;
  if (step >= range.steps) return range.atMost;  // a few lux that the cut of the grid leaves over
  return static_cast<uint8_t>(range.atLeast + step * (range.atMost - range.atLeast) / range.steps);
}

std::optional<uint8_t> LookUpMap(std::span<const LuxItem> items, uint16_t lux) {
  if (items.empty() || items.size() > mix::kMostLuxItems) return std::nullopt;
  if (lux <= items.front().lux) return items.front().percent;
  if (lux >= items.back().lux || lux > kBrightDaylight) return items.back().percent;
  for (std::size_t i = 1; i < items.size(); ++i) {
    if (items[i - 1].lux <= lux && lux <= items[i].lux) {
      return Between(items[i - 1], items[i], lux);
    }
  }
  return std::nullopt;  // not reached: somewhere the map passes `lux` on its way up
}

}  // namespace ZEPH_MCUC::brightness
