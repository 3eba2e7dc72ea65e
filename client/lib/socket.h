// The connection to a board's bus.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <span>

#include "descriptor.h"
#include "quivord/result.h"

namespace quivord {

using Clock = std::chrono::steady_clock;

// Connects to the bus of the board folder `board` and registers as task `id`. The socket does not
// wait.
Result<Descriptor> ConnectToBus(const std::filesystem::path& board, std::uint32_t id);

// Sends one packet, waiting for room until `deadline`. kTimeout, or kDisconnected.
Outcome SendPacket(int socket, std::span<const std::uint8_t> packet, Clock::time_point deadline);

// Takes one packet into `buffer` without waiting.
struct Received {
  enum class Kind : std::uint8_t { kPacket, kNothing, kEnd };
  Kind kind;
  std::span<const std::uint8_t> packet = {};
};
Received ReceivePacket(int socket, std::span<std::uint8_t> buffer);

}  // namespace quivord
