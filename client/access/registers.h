// The registers of one device on a board, read and written with the answers judged: what the device
// refuses, or would, is an error that says why.
//
// All functions may be called from any thread.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "quivord/client.h"

namespace quivord::access {

// What the device answered, and a remark for people: empty where there is nothing to say.
struct Served {
  std::vector<std::uint8_t> data;  // of a read
  std::string remark;
};

// Why the sending card would refuse or lose a write of so many bytes: it would answer some of these
// like a success, so they are not sent. Nothing where the write may go out, and for other devices.
std::optional<std::string> WriteObstacle(const Target& target, std::uint32_t address,
                                         std::size_t length);

class Registers {
 public:
  // The client outlives them. Each call waits `timeout` at most.
  Registers(Client& client, Target target, std::chrono::milliseconds timeout)
      : client_(&client), target_(target), timeout_(timeout) {}

  // Reads `length` bytes at `address`. An answer without the bytes is kRefused, save where no bytes
  // are to be had.
  Result<Served> Read(std::uint32_t address, std::uint16_t length) const;

  // The same, all of the bytes or kRefused.
  Result<std::vector<std::uint8_t>> ReadWhole(std::uint32_t address, std::size_t length) const;

  // Writes `data` at `address`, unless there is an obstacle. Done means understood: the device may
  // still be at work.
  Result<Served> Write(std::uint32_t address, std::vector<std::uint8_t> data) const;

  const Target& target() const { return target_; }

 private:
  Client* client_;
  Target target_;
  std::chrono::milliseconds timeout_;
};

}  // namespace quivord::access
