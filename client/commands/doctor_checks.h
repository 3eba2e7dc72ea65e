// What `quivordctl doctor` looks at: the board folder where there is one, and the daemon.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "device.h"

namespace ctl {

enum class Health : std::uint8_t {
  kGood,
  kNote,  // as it may be, and worth knowing
  kWrong,
  kUnknown,  // couldn't be looked at
};

struct Finding {
  Health health;
  std::string text;
  const char* advice = nullptr;  // where that of the check doesn't fit
};

// What the checks find out one after the other; a check uses what those before it left here.
struct Patient {
  const Context& context;
  bool folder;                        // there is a board folder
  std::unique_ptr<Device> device{};   // once the daemon has answered
  std::optional<FeaturePage> page{};  // once the FPGA has shown that it holds something

  const std::filesystem::path& board() const { return context.options.board; }
};

struct Check {
  const char* name;
  Finding (*look)(Patient& patient);
  const char* advice;  // what to do where it isn't good
};

// In the order in which they are made.
std::span<const Check> Checks();

}  // namespace ctl
