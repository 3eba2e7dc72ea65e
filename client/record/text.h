// What a replay came to, for people and as JSON.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "record/player.h"

namespace quivord::record {

// Lines without the last line feed: how much was played, and with `compared` what differs and what
// was allowed to.
std::string PlayedText(const Played& played, bool compared);

// docs/recording.md describes it.
nlohmann::json PlayedJson(const Played& played, bool compared);

}  // namespace quivord::record
