// A wall as text and as JSON, for `wall show`.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "wall/model.h"

namespace quivord::wall {

// "smart", "advanced", "software" or "none".
const char* KindWord(Kind kind);

// Lines without the last line feed: what the wall is, then its ports.
std::string ShowText(const Wall& wall);

// The same for programs:
//   kind; screen: {width, height}; card: {width, height}; cabinets; ports: a list of
//   {port, cards, window: {x, y, width, height}, repeats (a port, or null), backup};
// and of a smart wall rows, columns, cables and per_cable.
nlohmann::ordered_json ShowJson(const Wall& wall);

}  // namespace quivord::wall
