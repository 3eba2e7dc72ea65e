#include "proto/calc_identity.h"

namespace ZEPH_MCUC {
namespace {

uint8_t Digit(char c) {
  if (c >= '0' && c <= '9') return static_cast<uint8_t>(c - '0');
  if (c >= 'a' && c <= 'f') return static_cast<uint8_t>(c - 'a' + 10);
  if (c >= 'A' && c <= 'F') return static_cast<uint8_t>(c - 'A' + 10);
  return 0;
}

}  // namespace

std::string SerialText(std::span<const uint8_t, kSerialBytes> serial) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const uint8_t byte : serial) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0x0F];
  }
  return text;
}

void HexToBytes(std::string_view text, std::size_t length, std::span<uint8_t> into) {
  const auto digit = [&](std::size_t at) {
    return at < text.size() && at < length ? Digit(text[at]) : uint8_t{0};
  };
  const std::size_t count = (length + 1) / 2;
  for (std::size_t i = 0; i < count && i < into.size(); ++i) {
    const bool alone = count % 2 == 1 && i == count - 1;
    into[i] = static_cast<uint8_t>(digit(2 * i) * 16 + (alone ? 0 : digit(2 * i + 1)));
  }
}

bool IsBlankSerial(std::string_view text) { return text.substr(0, kSerialDigits) == SN_0; }

}  // namespace ZEPH_MCUC
