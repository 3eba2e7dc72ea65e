// A line of the board's trace that tells of the message bus, as far as its log shows it. Pure; any
// thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "stub/frame_layout.h"

namespace quivord::live {

struct BusLine {
  std::int64_t at_us = 0;  // on the PC's monotonic clock
  bool towards_daemon = false;
  std::uint32_t peer = 0;
  ZEPH_MCUC::FrameHead head;
  std::vector<std::uint8_t> data;  // as many as stand in the line, which may have been cut
};

// Nothing for a line of another kind, or one that isn't as it should be.
std::optional<BusLine> ReadBusLine(std::string_view line);

}  // namespace quivord::live
