// The options that all commands share.
#pragma once

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "quivord/messages.h"

namespace ctl {

// What `all` stands for behind --port and --card.
inline constexpr std::uint8_t kAllPorts = 0xFF;
inline constexpr std::uint16_t kAllCards = 0xFFFF;

struct Options {
  std::filesystem::path board;      // the board folder
  std::optional<std::uint32_t> as;  // task identifier, slot included; none: what the command likes
  quivord::Target target;
  bool portGiven = false;  // whether the command line names a port and a card, or they are 0
  bool cardGiven = false;
  std::chrono::milliseconds timeout{5000};
  bool json = false;

  std::uint8_t slot = 0;    // of the board
  std::uint32_t speed = 1;  // of the board's clock

  // The identifier of the task `number` in the board's slot.
  std::uint32_t Task(std::uint32_t number) const;

  // The identifier for a program of no name: one per process.
  std::uint32_t OwnTask() const;
};

// What stands on the command line, before it is understood.
struct OptionWords {
  std::string board;
  bool all = false;
  std::string as;
  std::string device = "sender";
  std::string port;
  std::string card;
  double timeout_s = 5;
  bool json = false;
};

// Adds the options to `app`, filling `words`.
void Declare(CLI::App& app, OptionWords& words);

// Understands `words`. Throws CLI::ValidationError with a sentence for people.
Options Understand(const OptionWords& words);

}  // namespace ctl
