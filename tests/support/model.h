// The feature registers a second time: what one peer has written, kept beside the daemon.
//
// A write is answered before it is carried out, so until the peer has seen its work done a register
// may show the value before it or any that was written since, and never goes back to an older one.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace model {

inline constexpr std::uint32_t kRegisters = 512;

class Registers {
 public:
  // Registers that belong to this peer, and what they hold.
  void Own(std::uint32_t offset, std::uint8_t value) { shown_[offset] = {value}; }
  bool Owns(std::uint32_t offset) const { return !shown_[offset].empty(); }

  // Notes a write to owned registers from `offset` up.
  void Write(std::uint32_t offset, std::span<const std::uint8_t> data);

  // Compares what was read from `offset` up with what the owned registers may show. Empty, or what
  // is wrong.
  std::string Compare(std::uint32_t offset, std::span<const std::uint8_t> data);

  // The work is done: each register shows what was written last and nothing else.
  void Settle();

 private:
  // What a register may show from now on, in the order of the writes; empty for another's.
  std::array<std::vector<std::uint8_t>, kRegisters> shown_;
};

}  // namespace model
