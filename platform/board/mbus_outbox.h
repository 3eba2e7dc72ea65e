// What the daemon sends while more messages wait for it is collected here, so that one system call
// takes many packets to a peer.
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <utility>

#include "board/mbus_message.h"
#include "board/mbus_peer.h"

namespace board::mbus {

class Outbox {
 public:
  // `full` is called, on the sending thread, with a peer whose socket has no room.
  explicit Outbox(std::function<void(std::shared_ptr<Peer>)> full) : full_(std::move(full)) {}

  // Sends `message` behind all that has been collected, or collects it if `queue` holds more for
  // the daemon, whose reply can go with it. Any thread; the order of the calls is kept.
  void Send(std::shared_ptr<Peer> peer, std::span<const std::uint8_t> message,
            const MessageQueue& queue);

  // Sends what has been collected. Any thread.
  void Flush();

  // Whether something is collected, and whether it has been for so long that whoever sees it shall
  // send it: the daemon is busy with a long request. Any thread.
  bool pending() const { return since_.load(std::memory_order_relaxed) != kNothing; }
  bool overdue() const;

 private:
  using Clock = std::chrono::steady_clock;
  static constexpr Clock::rep kNothing = 0;
  static constexpr std::size_t kMost = Peer::kMostAtOnce;
  static constexpr std::size_t kRoom = 256;  // bytes of a message that is collected

  struct Entry {
    std::shared_ptr<Peer> peer;
    std::size_t length;
    std::array<std::uint8_t, kRoom> bytes;
  };

  void Collect(std::shared_ptr<Peer> peer, std::span<const std::uint8_t> message);
  bool MayWait(const MessageQueue& queue);
  bool OlderThan(std::chrono::microseconds age) const;
  void FlushLocked();
  void SendTo(const std::shared_ptr<Peer>& peer, std::span<const Peer::Message> messages);

  const std::function<void(std::shared_ptr<Peer>)> full_;
  std::mutex mutex_;  // guards what follows, and the order on the wire
  std::array<Entry, kMost> entries_;
  std::size_t count_ = 0;
  std::atomic<Clock::rep> since_{kNothing};  // when the first was collected; changed under `mutex_`
};

}  // namespace board::mbus
