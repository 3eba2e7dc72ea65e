// A message on its way to the daemon, and the two shapes in which messages stand together: a stack
// that any thread pushes on and one takes whole, and a queue made of it.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>

namespace board::mbus {
class Peer;
}

// Chained by `next` into at most one stack, list or queue at a time.
struct mbus_msg_t {
  mbus_msg_t* next = nullptr;
  std::uint8_t sizeClass = 0;                 // the pool's business
  std::uint32_t length = 0;                   // bytes of envelope and frame
  std::unique_ptr<std::uint8_t[]> bytes;      // as many as the size class says
  std::shared_ptr<board::mbus::Peer> sender;  // set while the message counts as undelivered
};

namespace board::mbus {

inline constexpr std::uint32_t kEnvelopeSize = 28;
inline constexpr std::uint32_t kMostFrame = 65536;
inline constexpr std::uint32_t kMostMessage = kEnvelopeSize + kMostFrame;
inline constexpr std::uint32_t kIdOffset = 0;  // the sender's, or the receiver's, identifier
inline constexpr std::uint32_t kFrameSizeOffset = 24;  // number of frame bytes that follow

// Any thread may push; what is taken is the whole stack, so no element can come back in between.
class MessageStack {
 public:
  void Push(mbus_msg_t* message) {
    message->next = top_.load(std::memory_order_relaxed);
    while (!top_.compare_exchange_weak(message->next, message, std::memory_order_release,
                                       std::memory_order_relaxed)) {
    }
  }

  // Newest first.
  mbus_msg_t* TakeAll() { return top_.exchange(nullptr, std::memory_order_acquire); }

  bool empty() const { return top_.load(std::memory_order_relaxed) == nullptr; }

 private:
  std::atomic<mbus_msg_t*> top_{nullptr};
};

// First in, first out. Any thread, though it is made for one that puts and one that polls: looking
// into an empty queue costs two plain loads, and the two never wait for each other.
class MessageQueue {
 public:
  void Put(mbus_msg_t* message) { arrived_.Push(message); }

  // The oldest message, or null.
  mbus_msg_t* Take();

  // Whether nothing is left to take; true for a moment too long or too short beside another thread
  // that puts or takes. `emptied` waits for a thread that is about to take.
  bool empty() const {
    return ordered_.load(std::memory_order_relaxed) == nullptr && arrived_.empty();
  }
  bool emptied() const;

 private:
  MessageStack arrived_;
  mutable std::mutex mutex_;                   // between threads that take
  std::atomic<mbus_msg_t*> ordered_{nullptr};  // oldest first; changed under `mutex_`
};

}  // namespace board::mbus
