// What a factory reset is said to keep, and what it has kept.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "device.h"
#include "proto/calc_reset.h"

namespace ctl {

// "2 (keep-files)", all names in a row, and what a type does, some lines.
std::string ResetTypeText(std::uint8_t type);
std::string ResetTypeNames();
std::string ResetTypeEffect(std::uint8_t type);

// What of a device can be compared before and behind a reset.
struct Kept {
  std::vector<std::uint8_t> serial;
  std::vector<std::uint8_t> names;  // of devices
  std::vector<std::uint8_t> files;  // the list of configuration files
  FeaturePage page;
};

// Reads all but the page.
Answer ReadKept(Device& device, Kept& kept);

struct ResetReport {
  bool as_meant;  // what the type keeps is there, what it doesn't is gone
  std::string text;
  nlohmann::json object;
};
ResetReport ReportReset(std::uint8_t type, const Kept& before, const Kept& now);

}  // namespace ctl
