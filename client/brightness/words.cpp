#include "brightness/words.h"

#include <algorithm>
#include <charconv>

#include "process/calc_time.h"
#include "proto/calc_brightness.h"

namespace quivord::brightness {
namespace {

std::optional<int> Number(std::string_view digits, int most) {
  int value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  if (value < 0 || value > most) return std::nullopt;
  return value;
}

std::string HexDigits(std::uint8_t byte) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  return {kDigits[byte >> 4], kDigits[byte & 0x0F]};
}

// The days from `first` on that follow each other in the mask.
std::size_t RunOf(std::uint8_t mask, std::size_t first) {
  std::size_t days = 0;
  while (first + days < kDays.size() && (mask >> (first + days) & 1) != 0) ++days;
  return days;
}

}  // namespace

std::optional<std::uint8_t> ParseDay(std::string_view word) {
  const auto* const day = std::ranges::find(kDays, word);
  if (day == kDays.end()) return std::nullopt;
  return static_cast<std::uint8_t>(day - kDays.begin());
}

std::string DaysText(std::uint8_t mask) {
  if ((mask & kEveryDay) == kEveryDay) return "every day";
  std::string text;
  for (std::size_t day = 0; day < kDays.size();) {
    const std::size_t run = std::max<std::size_t>(RunOf(mask, day), 1);
    if ((mask >> day & 1) != 0) {
      text += (text.empty() ? "" : ", ") + std::string(kDays[day]);
      if (run > 2) text += std::string(" to ") + kDays[day + run - 1];
    }
    day += run > 2 ? run : 1;
  }
  return text.empty() ? "no day" : text;
}

std::optional<BcdTime> ParseTime(std::string_view text) {
  if (text.size() != 5 || text[2] != ':') return std::nullopt;
  const auto hour = Number(text.substr(0, 2), 23);
  const auto minute = Number(text.substr(3), 59);
  if (!hour.has_value() || !minute.has_value()) return std::nullopt;
  return BcdTime{ZEPH_MCUC::ToBcd(static_cast<std::uint8_t>(*hour)),
                 ZEPH_MCUC::ToBcd(static_cast<std::uint8_t>(*minute))};
}

std::string TimeText(std::uint8_t hour, std::uint8_t minute) {
  return HexDigits(hour) + ":" + HexDigits(minute);
}

std::optional<int> MinuteOf(std::uint8_t hour, std::uint8_t minute) {
  using ZEPH_MCUC::FromBcd;
  using ZEPH_MCUC::IsBcd;
  if (!IsBcd(hour) || !IsBcd(minute) || FromBcd(hour) > 23 || FromBcd(minute) > 59) {
    return std::nullopt;
  }
  return FromBcd(hour) * 60 + FromBcd(minute);
}

std::optional<std::uint8_t> ParseBrightness(std::string_view word) {
  const bool percent = word.ends_with('%');
  if (percent) word.remove_suffix(1);
  const auto value = Number(word, percent ? 100 : 255);
  if (!value.has_value()) return std::nullopt;
  const auto byte = static_cast<std::uint8_t>(*value);
  return percent ? ZEPH_MCUC::brightness::FromPercent(byte) : byte;
}

std::string BrightnessText(std::uint8_t value) {
  return std::to_string(value) + " (" + std::to_string((value * 100 + 127) / 255) + "%)";
}

}  // namespace quivord::brightness
