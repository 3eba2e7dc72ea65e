// One connection to the bus: what waits on the way to it, and how much of it waits for the daemon.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

#include "board/files.h"
#include "board/mbus_message.h"

namespace board::mbus {

inline constexpr std::size_t kMostBacklog = 1024;  // messages on the way to a peer
inline constexpr std::uint64_t kMostUndelivered = 1024;
inline constexpr std::uint64_t kMostUndeliveredBytes = 4 << 20;

class Peer : public std::enable_shared_from_this<Peer> {
 public:
  explicit Peer(FileHandle socket) : socket_(std::move(socket)) {}

  int socket() const { return socket_.get(); }

  // Ends the connection for both sides; the descriptor stays this object's. Any thread.
  void HangUp();

  // Towards the peer, at most `kMostAtOnce` messages at a time. Any thread; messages of one thread
  // keep their order.
  using Message = std::span<const std::uint8_t>;
  static constexpr std::size_t kMostAtOnce = 32;
  enum class Sent : std::uint8_t {
    kDone,     // sent, or behind others in the backlog, or lost
    kWaiting,  // the first in the backlog: the loop shall call `Flush` when there is room
  };
  Sent Send(std::span<const Message> messages);

  // Sends from the backlog until it is empty or the socket full; true when it is empty.
  bool Flush();

  // Towards the daemon: counts a message in, before it is handed on, and out when the daemon takes
  // it. `CountOut` is true when the peer had been held and reading may go on.
  void CountIn(std::uint32_t bytes);
  bool CountOut(std::uint32_t bytes);

  // How many packets may be read now, at most `wanted`, without passing a limit by more than one
  // message. 0 holds the peer: nothing is to be read until `CountOut` says so.
  std::size_t Admit(std::size_t wanted);

  // A packet that was no message; returns how many there have been.
  std::uint64_t CountDropped() { return ++dropped_; }

  // Of the loop's thread.
  std::uint32_t id = 0;
  bool registered = false;
  bool closed = false;
  bool reading = true;   // false while held
  bool writing = false;  // room for the backlog is waited for

 private:
  void Lose();
  void Keep(Message message);

  const FileHandle socket_;
  std::uint64_t dropped_ = 0;  // of the loop's thread

  std::atomic<std::uint64_t> undelivered_{0};  // messages in the low half, their bytes in the high
  std::atomic<bool> held_{false};

  std::mutex sending_;                             // guards what follows, and the order on the wire
  std::deque<std::vector<std::uint8_t>> backlog_;  // oldest first
  std::uint64_t lost_ = 0;
  std::atomic<bool> gone_{false};
};

}  // namespace board::mbus
