// BCD and the calendar, as values. Pure.
#pragma once

#include <cstdint>
#include <span>

namespace ZEPH_MCUC {

constexpr uint8_t FromBcd(uint8_t bcd) {
  return static_cast<uint8_t>((bcd >> 4) * 10 + (bcd & 0x0F));
}
constexpr uint8_t ToBcd(uint8_t value) {
  return static_cast<uint8_t>((value / 10) << 4 | value % 10);
}
constexpr bool IsBcd(uint8_t byte) { return (byte >> 4) <= 9 && (byte & 0x0F) <= 9; }

// Days of a month, 1 to 12, of a year since 2000 below 100.
uint8_t DaysOfMonth(uint8_t year, uint8_t month);

// Weekday of a date in 2000 + `year`: 1 for Monday to 7 for Sunday.
uint8_t WeekdayOf(uint8_t year, uint8_t month, uint8_t day);

// Whether six BCD bytes (year since 2000, month, day, hour, minute, second) are a time that exists.
bool IsTime(std::span<const uint8_t, 6> bcd);

}  // namespace ZEPH_MCUC
