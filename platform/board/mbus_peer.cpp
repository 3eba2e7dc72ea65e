#include "board/mbus_peer.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>

#include "board/mbus_warn.h"

namespace board::mbus {
namespace {

// A held peer is read again when this much has been taken, so that a daemon at its limit isn't
// woken for each single message.
constexpr std::uint64_t kResumeBelow = kMostUndelivered - 64;

enum class Outcome : std::uint8_t { kSent, kFull, kGone };

Outcome SendNow(int socket, std::span<const std::uint8_t> message) {
  ssize_t sent = 0;
  do {
    sent = send(socket, message.data(), message.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
  } while (sent < 0 && errno == EINTR);
  if (sent >= 0) return Outcome::kSent;
  return errno == EAGAIN || errno == ENOBUFS || errno == ENOMEM ? Outcome::kFull : Outcome::kGone;
}

}  // namespace

void Peer::HangUp() {
  gone_.store(true, std::memory_order_relaxed);
  shutdown(socket(), SHUT_RDWR);
}

Peer::Sent Peer::Send(std::span<const std::uint8_t> message) {
  const std::lock_guard lock(sending_);
  if (gone_.load(std::memory_order_relaxed)) return Sent::kDone;
  if (backlog_.empty()) {
    const Outcome outcome = SendNow(socket(), message);
    if (outcome == Outcome::kGone) gone_.store(true, std::memory_order_relaxed);
    if (outcome != Outcome::kFull) return Sent::kDone;
  }
  if (backlog_.size() >= kMostBacklog) {
    Lose();
    return Sent::kDone;
  }
  backlog_.emplace_back(message.begin(), message.end());
  return backlog_.size() == 1 ? Sent::kWaiting : Sent::kDone;
}

void Peer::Lose() {
  ++lost_;
  if (WorthALine(lost_)) {
    Warn("a peer does not read: %llu messages to it lost", static_cast<unsigned long long>(lost_));
  }
}

bool Peer::Flush() {
  const std::lock_guard lock(sending_);
  while (!backlog_.empty()) {
    const Outcome outcome = SendNow(socket(), backlog_.front());
    if (outcome == Outcome::kFull) return false;
    if (outcome == Outcome::kGone) {
      gone_.store(true, std::memory_order_relaxed);
      backlog_.clear();
      return true;
    }
    backlog_.pop_front();
  }
  return true;
}

void Peer::CountIn(std::uint32_t bytes) {
  undelivered_.fetch_add(1, std::memory_order_relaxed);
  undelivered_bytes_.fetch_add(bytes, std::memory_order_relaxed);
}

bool Peer::CountOut(std::uint32_t bytes) {
  // Sequentially consistent with `Admit`: either it sees the new counts or this sees the mark.
  const std::uint64_t left_bytes = undelivered_bytes_.fetch_sub(bytes) - bytes;
  const std::uint64_t left = undelivered_.fetch_sub(1) - 1;
  if (!held_.load() || left > kResumeBelow || left_bytes >= kMostUndeliveredBytes) return false;
  return held_.exchange(false);
}

std::size_t Peer::Admit(std::size_t wanted) {
  const auto allowed = [&]() -> std::size_t {
    const std::uint64_t count = undelivered_.load();
    const std::uint64_t bytes = undelivered_bytes_.load();
    if (count >= kMostUndelivered || bytes >= kMostUndeliveredBytes) return 0;
    const std::uint64_t by_bytes = (kMostUndeliveredBytes - bytes - 1) / kMostMessage + 1;
    return std::min<std::uint64_t>({wanted, kMostUndelivered - count, by_bytes});
  };
  std::size_t packets = allowed();
  if (packets > 0) return packets;
  held_.store(true);
  packets = allowed();  // the daemon may have taken all in between, seeing no mark
  if (packets > 0 && held_.exchange(false)) return packets;
  return 0;
}

}  // namespace board::mbus
