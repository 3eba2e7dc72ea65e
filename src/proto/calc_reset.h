// What a factory reset keeps, by its type. Pure.
#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string_view>

namespace ZEPH_MCUC {

struct ResetRule {
  std::string_view name;  // for the client
  bool keepsDhcp;         // the DHCP flag; otherwise it is cleared
  bool defaultNetwork;    // sets the default static address
  bool keepsFiles;        // scene data, device names and configuration files, in flash and on disk
};

// By type; the last one stands for every type above.
inline constexpr ResetRule kResetRules[] = {
    {"plain", true, false, false},
    {"network", false, true, false},
    {"keep-files", true, false, true},
    {"all", false, false, false},
};

constexpr const ResetRule& ResetRuleOf(uint8_t type) {
  return kResetRules[std::min<std::size_t>(type, std::size(kResetRules) - 1)];
}

}  // namespace ZEPH_MCUC
