// A line of the board's trace that tells of the message bus. Pure; any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quivord::trace {

struct BusLine {
  std::int64_t at_us = 0;  // on the PC's monotonic clock
  bool towards_daemon = false;
  std::uint32_t peer = 0;           // task identifier, slot included
  std::size_t length = 0;           // bytes of the frame, as the line says
  std::vector<std::uint8_t> frame;  // as many as stand in the line, which may have been cut

  bool operator==(const BusLine&) const = default;
};

// Nothing for a line of another kind, or one that isn't as it should be.
std::optional<BusLine> ReadBusLine(std::string_view line);

// Bytes as the trace writes them: lower-case hexadecimal, "-" for none. Reading stops in front of
// what is no pair of digits.
std::string HexOf(const std::vector<std::uint8_t>& bytes);
std::vector<std::uint8_t> BytesOf(std::string_view hex);

// A count of microseconds in decimal digits, the whole of `text`; nothing where it is none.
std::optional<std::int64_t> TimeOf(std::string_view text);

}  // namespace quivord::trace
