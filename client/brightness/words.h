// Times, weekdays and values as people write them. Pure.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quivord::brightness {

// Weekdays as a file names them, in the order of an arrival's mask: bit 0 is Monday.
inline constexpr std::array<const char*, 7> kDays = {"mon", "tue", "wed", "thu",
                                                     "fri", "sat", "sun"};
inline constexpr std::uint8_t kEveryDay = 0x7F;

std::optional<std::uint8_t> ParseDay(std::string_view word);

// "every day", "mon to fri", "sat, sun", "no day"; bit 7 doesn't count.
std::string DaysText(std::uint8_t mask);

// A time of day as two BCD bytes.
struct BcdTime {
  std::uint8_t hour = 0;
  std::uint8_t minute = 0;
};

// "08:05" to bytes; nothing for what is no time of a day.
std::optional<BcdTime> ParseTime(std::string_view text);

// The other way round; the digits of the bytes, whatever they are.
std::string TimeText(std::uint8_t hour, std::uint8_t minute);

// Minutes since midnight; nothing for bytes that are no time of a day.
std::optional<int> MinuteOf(std::uint8_t hour, std::uint8_t minute);

// A brightness of 0 to 255 from "153" or "60%"; nothing for another word.
std::optional<std::uint8_t> ParseBrightness(std::string_view word);

// "153 (60%)".
std::string BrightnessText(std::uint8_t value);

}  // namespace quivord::brightness
