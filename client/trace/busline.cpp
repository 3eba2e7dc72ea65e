#include "trace/busline.h"

#include <charconv>

#include "board/text.h"

namespace quivord::trace {

namespace {

constexpr std::uint32_t kAny = UINT32_MAX;

// The value of a hexadecimal digit; 16 for any other character.
unsigned Digit(char c) {
  if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
  return c >= 'a' && c <= 'f' ? static_cast<unsigned>(c - 'a') + 10 : 16;
}

}  // namespace

std::string HexOf(const std::vector<std::uint8_t>& bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  if (bytes.empty()) return "-";
  std::string text;
  text.reserve(2 * bytes.size());
  for (const std::uint8_t byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

std::vector<std::uint8_t> BytesOf(std::string_view hex) {
  std::vector<std::uint8_t> bytes;
  bytes.reserve(hex.size() / 2);
  for (; hex.size() >= 2; hex.remove_prefix(2)) {
    const unsigned high = Digit(hex[0]);
    const unsigned low = Digit(hex[1]);
    if (high > 15 || low > 15) break;
    bytes.push_back(static_cast<std::uint8_t>(high * 16 + low));
  }
  return bytes;
}

std::optional<std::int64_t> TimeOf(std::string_view text) {
  std::int64_t number = 0;
  const char* const whole = text.data() + text.size();
  const auto [end, fault] = std::from_chars(text.data(), whole, number);
  if (fault != std::errc() || end != whole || number < 0) return std::nullopt;
  return number;
}

std::optional<BusLine> ReadBusLine(std::string_view line) {
  const auto word = [&line] { return board::TakeUntil(line, ' '); };
  const auto at = TimeOf(word());
  if (!at.has_value() || word() != "bus") return std::nullopt;
  const std::string_view way = word();
  const auto peer = board::NumberBetween(word(), 0, kAny);
  const auto length = board::NumberBetween(word(), 0, kAny);
  if ((way != ">" && way != "<") || !peer.has_value() || !length.has_value()) return std::nullopt;
  return BusLine{*at, way == ">", *peer, *length, BytesOf(line)};
}

}  // namespace quivord::trace
