// Buffers for messages, by size, kept for the next message instead of given back.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

#include "board/mbus_message.h"

namespace board::mbus {

class MessagePool {
 public:
  // A message with room for `length` bytes, at most `kMostMessage`; its content is left as it was.
  // One thread takes.
  mbus_msg_t* Take(std::uint32_t length);

  // Takes a message back. Any thread.
  void Give(mbus_msg_t* message);

 private:
  struct Shelf {
    MessageStack returned;
    mbus_msg_t* free = nullptr;         // of the thread that takes
    std::atomic<std::int32_t> kept{0};  // in both lists
  };

  std::array<Shelf, 4> shelves_;
};

}  // namespace board::mbus
