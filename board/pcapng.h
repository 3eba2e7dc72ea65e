// A file of captured packets as pcapng, the format of IETF draft-ietf-opsawg-pcapng: one section,
// one interface, a block a packet.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>
#include <string_view>

namespace board_tool {

class Pcapng {
 public:
  enum class Direction : std::uint8_t { kInbound = 1, kOutbound = 2 };

  // Writes what stands in front of the packets. `link_type` is the number of the interface's link
  // type; `name` its name. The stream stays the caller's.
  Pcapng(std::FILE* stream, std::uint16_t link_type, std::string_view name);

  // Adds a packet of that time, microseconds since 1970.
  void Add(std::int64_t at_us, Direction direction, std::span<const std::uint8_t> packet);

  // Hands what was added to the system; false where any of it could not be written.
  bool Flush();

 private:
  std::FILE* stream_;
};

}  // namespace board_tool
