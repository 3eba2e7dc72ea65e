#include "board/mbus_peer.h"

#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "board/mbus_warn.h"

namespace board::mbus {
namespace {

// A held peer is read again when this much has been taken, so that a daemon at its limit isn't
// woken for each single message.
constexpr std::uint64_t kResumeBelow = kMostUndelivered - 64;

constexpr int kBytesAt = 32;  // bits
constexpr std::uint64_t kCountMask = (std::uint64_t{1} << kBytesAt) - 1;

constexpr std::uint64_t OneOf(std::uint32_t bytes) { return std::uint64_t{bytes} << kBytesAt | 1; }

enum class Outcome : std::uint8_t { kSent, kFull, kGone };

Outcome WhyNot() {
  return errno == EAGAIN || errno == ENOBUFS || errno == ENOMEM ? Outcome::kFull : Outcome::kGone;
}

// Sends from `messages`, taking off what has gone, until none is left or no more goes.
Outcome SendNow(int socket, std::span<const Peer::Message>* messages) {
  std::array<iovec, Peer::kMostAtOnce> places;
  std::array<mmsghdr, Peer::kMostAtOnce> headers;
  for (std::size_t i = 0; i < messages->size(); ++i) {
    const Peer::Message message = (*messages)[i];
    places[i] = {const_cast<std::uint8_t*>(message.data()), message.size()};  // NOLINT: only read
    headers[i] = {};
    headers[i].msg_hdr.msg_iov = &places[i];
    headers[i].msg_hdr.msg_iovlen = 1;
  }
  const std::size_t count = messages->size();
  while (!messages->empty()) {
    const int sent = sendmmsg(socket, &headers[count - messages->size()],
                              static_cast<unsigned>(messages->size()), MSG_DONTWAIT | MSG_NOSIGNAL);
    if (sent < 0 && errno != EINTR) return WhyNot();
    if (sent > 0) *messages = messages->subspan(static_cast<std::size_t>(sent));
  }
  return Outcome::kSent;
}

}  // namespace

void Peer::HangUp() {
  gone_.store(true, std::memory_order_relaxed);
  shutdown(socket(), SHUT_RDWR);
}

Peer::Sent Peer::Send(std::span<const Message> messages) {
  const std::lock_guard lock(sending_);
  if (gone_.load(std::memory_order_relaxed)) return Sent::kDone;
  const bool first = backlog_.empty();
  if (first) {
    const Outcome outcome = SendNow(socket(), &messages);
    if (outcome == Outcome::kGone) gone_.store(true, std::memory_order_relaxed);
    if (outcome != Outcome::kFull) return Sent::kDone;
  }
  for (const Message message : messages) Keep(message);
  return first ? Sent::kWaiting : Sent::kDone;
}

void Peer::Keep(Message message) {
  if (backlog_.size() >= kMostBacklog) return Lose();
  backlog_.emplace_back(message.begin(), message.end());
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
    std::array<Message, kMostAtOnce> next;
    const std::size_t many = std::min(backlog_.size(), next.size());
    std::copy_n(backlog_.begin(), many, next.begin());
    std::span<const Message> left = std::span(next).first(many);
    const Outcome outcome = SendNow(socket(), &left);
    backlog_.erase(backlog_.begin(),
                   backlog_.begin() + static_cast<std::ptrdiff_t>(many - left.size()));
    if (outcome == Outcome::kFull) return false;
    if (outcome == Outcome::kGone) {
      gone_.store(true, std::memory_order_relaxed);
      backlog_.clear();
    }
  }
  return true;
}

void Peer::CountIn(std::uint32_t bytes) {
  undelivered_.fetch_add(OneOf(bytes), std::memory_order_relaxed);
}

bool Peer::CountOut(std::uint32_t bytes) {
  // Sequentially consistent with `Admit`: either it sees the new counts or this sees the mark.
  const std::uint64_t left = undelivered_.fetch_sub(OneOf(bytes)) - OneOf(bytes);
  if (!held_.load() || (left & kCountMask) > kResumeBelow ||
      left >> kBytesAt >= kMostUndeliveredBytes) {
    return false;
  }
  return held_.exchange(false);
}

std::size_t Peer::Admit(std::size_t wanted) {
  const auto allowed = [&]() -> std::size_t {
    const std::uint64_t both = undelivered_.load();
    const std::uint64_t count = both & kCountMask;
    const std::uint64_t bytes = both >> kBytesAt;
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
