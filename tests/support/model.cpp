#include "support/model.h"

#include <algorithm>
#include <sstream>

namespace model {

void Registers::Write(std::uint32_t offset, std::span<const std::uint8_t> data) {
  for (const std::uint8_t byte : data) shown_[offset++].push_back(byte);
}

std::string Registers::Compare(std::uint32_t offset, std::span<const std::uint8_t> data) {
  for (const std::uint8_t byte : data) {
    auto& shown = shown_[offset++];
    if (shown.empty()) continue;
    const auto found = std::ranges::find(shown, byte);
    if (found != shown.end()) {
      shown.erase(shown.begin(), found);
      continue;
    }
    std::ostringstream text;
    text << "register 0x" << std::hex << offset - 1 << " shows " << int{byte} << " in place of";
    for (const std::uint8_t value : shown) text << " " << int{value};
    return text.str();
  }
  return "";
}

void Registers::Settle() {
  for (auto& shown : shown_) {
    if (!shown.empty()) shown.erase(shown.begin(), shown.end() - 1);
  }
}

}  // namespace model
