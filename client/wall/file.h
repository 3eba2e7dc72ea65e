// A wall as a file: JSON that says its kind, so that a wall moves from one device to another.
//
//   {"kind": "smart", "rows": 4, "columns": 3, "cables": "top-left-rows", "per_cable": 5}
//
//   {"kind": "advanced", "ports": [
//     {"port": 0, "cables": "top-left-rows", "rows": 2, "columns": 2, "x": 0, "y": 0}]}
//
// Ports that an advanced wall doesn't name carry nothing. A connection mode is a word or its
// number. Pure but for the text that is given; any thread.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "quivord/result.h"
#include "wall/model.h"

namespace quivord::wall {

struct WallFile {
  Kind kind = Kind::kNone;  // kSmart or kAdvanced
  Smart smart;
  PortRecords records;
};

// Understands the text of a file. What is missing, of a wrong type, out of range or unknown is
// kWrongUse and named; whether a device would take the wall is asked elsewhere.
Result<WallFile> ParseFile(std::string_view text);

// The other way round.
nlohmann::ordered_json SmartJson(const Smart& smart);
nlohmann::ordered_json AdvancedJson(const PortRecords& records);

// A connection mode by word or by number, "top-left-rows" or "0"; nothing for another word.
std::optional<std::uint8_t> ParseMode(std::string_view word);

// The word for a mode; its number where it names none.
std::string ModeWord(std::uint8_t mode);

}  // namespace quivord::wall
