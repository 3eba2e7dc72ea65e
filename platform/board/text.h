// Small readers of text, as configuration, stores and command lines need them. Pure.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>
#include <system_error>

namespace board {

// Without blanks, tabs and carriage returns at both ends.
inline std::string_view Trim(std::string_view text) {
  constexpr std::string_view kBlank = " \t\r";
  const auto first = text.find_first_not_of(kBlank);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlank) - first + 1);
}

// Cuts the text up to the first `end` off the front of `rest`, and the `end` with it.
inline std::string_view TakeUntil(std::string_view& rest, char end) {
  const auto at = std::min(rest.find(end), rest.size());
  const auto head = rest.substr(0, at);
  rest.remove_prefix(std::min(at + 1, rest.size()));
  return head;
}

// A whole text as a decimal or 0x number between `least` and `most`; nothing where it is none.
inline std::optional<std::uint32_t> NumberBetween(std::string_view text, std::uint32_t least,
                                                  std::uint32_t most) {
  const bool hex = text.starts_with("0x") || text.starts_with("0X");
  if (hex) text.remove_prefix(2);
  std::uint32_t number = 0;
  const char* const whole = text.data() + text.size();
  const auto [end, fault] = std::from_chars(text.data(), whole, number, hex ? 16 : 10);
  if (fault != std::errc() || end != whole || number < least || number > most) return std::nullopt;
  return number;
}

}  // namespace board
