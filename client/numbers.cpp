#include "numbers.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace ctl {
namespace {

constexpr std::size_t kBytesPerLine = 16;

std::string_view WithoutPrefix(std::string_view word) {
  const bool prefixed = word.starts_with("0x") || word.starts_with("0X");
  return prefixed ? word.substr(2) : word;
}

char Printable(std::uint8_t byte) {
  return byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : '.';
}

std::string Format(const char* format, unsigned value) {
  char text[16];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

}  // namespace

std::optional<std::uint64_t> ParseNumber(std::string_view word, std::uint64_t most) {
  const std::string_view digits = WithoutPrefix(word);
  const bool hexadecimal = digits.size() != word.size();
  if (!hexadecimal && digits.size() > 1 && digits.front() == '0') return std::nullopt;
  std::uint64_t value = 0;
  const auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), value, hexadecimal ? 16 : 10);
  const bool whole = error == std::errc() && end == digits.data() + digits.size();
  if (!whole || value > most) return std::nullopt;
  return value;
}

std::optional<std::vector<std::uint8_t>> ParseBytes(const std::vector<std::string>& words) {
  std::vector<std::uint8_t> bytes;
  for (const std::string& word : words) {
    std::string digits(WithoutPrefix(word));
    if (digits.size() == 1) digits.insert(digits.begin(), '0');
    if (digits.empty() || digits.size() % 2 != 0) return std::nullopt;
    for (std::size_t i = 0; i < digits.size(); i += 2) {
      const auto byte = ParseNumber("0x" + digits.substr(i, 2), 0xFF);
      if (!byte.has_value()) return std::nullopt;
      bytes.push_back(static_cast<std::uint8_t>(*byte));
    }
  }
  return bytes;
}

std::string AddressText(std::uint32_t address) { return Format("0x%08X", address); }

std::string HexText(const std::vector<std::uint8_t>& bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) text += Format("%02x", byte);
  return text;
}

std::string HexDump(std::uint32_t address, const std::vector<std::uint8_t>& bytes) {
  std::string text;
  for (std::size_t begin = 0; begin < bytes.size(); begin += kBytesPerLine) {
    const std::size_t end = std::min(begin + kBytesPerLine, bytes.size());
    std::string hexadecimal;
    std::string characters;
    for (std::size_t i = begin; i < end; ++i) {
      hexadecimal += Format(" %02x", bytes[i]);
      characters += Printable(bytes[i]);
    }
    hexadecimal.resize(std::min(bytes.size(), kBytesPerLine) * 3, ' ');
    if (!text.empty()) text += '\n';
    text += AddressText(address + static_cast<std::uint32_t>(begin));
    text.append(" ").append(hexadecimal).append("  |").append(characters).append("|");
  }
  return text;
}

}  // namespace ctl
