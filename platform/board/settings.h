// What is wired to the board: the text file `board.conf`, its keys, their ranges and defaults.
// Pure, safe from any thread.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace board {

inline constexpr int kPorts = 16;
inline constexpr int kInputs = 16;
inline constexpr int kTraceKinds = 11;

// Kinds of device behind the ports; a device type on the wire is the index plus 1.
inline constexpr int kDeviceTypes = 4;

struct Input {
  std::uint16_t id = 0;  // object id of the input board
  std::string type;      // one of InputTypes()
  bool operator==(const Input&) const = default;
};

struct Settings {
  std::uint8_t slot = 0;
  std::uint16_t card_width = 128;  // pixels of one receiving card
  std::uint16_t card_height = 128;
  // Devices by port and device type - 1: receiving, multi-function, distribution box, 3D launcher.
  std::array<std::array<std::uint16_t, kDeviceTypes>, kPorts> devices{{{6, 1, 0, 0}, {6, 0, 0, 0}}};
  std::array<std::optional<Input>, kInputs> inputs{{Input{0x0000, "DVI"}, Input{0x0010, "HDMI14"}}};
  std::uint32_t fpga_load_ms = 500;
  std::uint32_t speed = 1;        // how many times faster than the PC's time passes
  std::uint32_t trace_kinds = 0;  // bit n: kind n of TraceKind is wanted

  bool operator==(const Settings&) const = default;
};

struct SettingResult {
  enum class Kind : std::uint8_t { kTaken, kUnknownKey, kBadValue };
  Kind kind = Kind::kTaken;
  std::string reason;  // for people; empty when taken
};

// Sets one key in `settings`; anything but kTaken leaves them as they were.
SettingResult ApplySetting(std::string_view key, std::string_view value, Settings& settings);

// Applies every line of a `board.conf`; a later line for the same key wins.
// Returns an empty text, or the first fault as "FILE:LINE: REASON"; `settings` then holds the lines
// in front of it.
std::string ParseSettings(std::string_view text, std::string_view file, Settings& settings);

// The text of a new `board.conf`: every default with what it means.
std::string DefaultSettingsText();

// The name of trace kind `kind`, 0 to kTraceKinds - 1, as the configuration and the trace say it.
std::string_view TraceKindName(int kind);

}  // namespace board
