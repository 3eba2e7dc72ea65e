// Takes packets from a peer's socket, many in one system call.
#pragma once

#include <sys/socket.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "board/mbus_message.h"

namespace board::mbus {

class PacketReader {
 public:
  static constexpr std::size_t kBatch = 32;

  PacketReader();

  struct Batch {
    std::size_t count = 0;  // packets, also empty ones
    bool ended = false;     // the other side has closed and nothing is left to read
  };

  // Reads up to `wanted` packets, at most `kBatch`, without waiting.
  Batch Read(int socket, std::size_t wanted);

  // Packet `index` of the last batch, valid until the next `Read`; a packet above `kMostMessage`
  // is cut, and `oversize` says so.
  std::span<const std::uint8_t> packet(std::size_t index) const;
  bool oversize(std::size_t index) const;

 private:
  // A slot's pages are touched as far as packets reach, so short packets use a page each.
  std::unique_ptr<std::uint8_t[]> slots_;
  std::array<iovec, kBatch> places_{};
  std::array<mmsghdr, kBatch> headers_{};
};

}  // namespace board::mbus
