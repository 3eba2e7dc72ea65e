// What the page may change of a board, as its outside: a link, the light, the time, faults.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <variant>

#include "board/board.h"
#include "quivord/result.h"

namespace quivord::live {

struct LinkOrder {
  int port = 0;  // 0 to 15
  bool up = false;
  bool operator==(const LinkOrder&) const = default;
};
struct LuxOrder {
  std::string lux;  // decimal, or "fail"
  bool operator==(const LuxOrder&) const = default;
};
struct JumpOrder {
  std::int64_t seconds = 0;  // forwards, or backwards below 0
  bool operator==(const JumpOrder&) const = default;
};
struct FaultOrder {
  board::Fault fault = board::Fault::kFpgaWrite;
  std::int32_t count = 0;
  bool operator==(const FaultOrder&) const = default;
};
using Order = std::variant<LinkOrder, LuxOrder, JumpOrder, FaultOrder>;

// Pure. Understands
//   {"order": "link", "port": 3, "up": false}     {"order": "lux", "lux": 1200}, or "fail"
//   {"order": "jump", "seconds": 3600}            {"order": "fault", "name": "card-read", "count":
//   3}
// Anything else is kWrongUse and named.
Result<Order> ParseOrder(std::string_view text);

// Carries it out on a board folder. An empty text, or why it could not; never creates a board.
std::string CarryOut(const Order& order, const std::filesystem::path& folder);

}  // namespace quivord::live
