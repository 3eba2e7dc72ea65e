#include "board/mbus_outbox.h"

#include <cstring>
#include <utility>

namespace board::mbus {
namespace {

using std::chrono::microseconds;

// Small beside the poll of whoever serves the messages, so that no reply waits for long.
constexpr microseconds kMostCollecting(50);
constexpr microseconds kOverdue(500);

}  // namespace

void Outbox::Send(std::shared_ptr<Peer> peer, std::span<const std::uint8_t> message,
                  const MessageQueue& queue) {
  const std::lock_guard lock(mutex_);
  if (message.size() > kRoom) {
    FlushLocked();
    return SendTo(peer, {&message, 1});
  }
  Collect(std::move(peer), message);
  if (!MayWait(queue)) FlushLocked();
}

void Outbox::Collect(std::shared_ptr<Peer> peer, std::span<const std::uint8_t> message) {
  Entry& entry = entries_[count_++];
  entry.peer = std::move(peer);
  entry.length = message.size();
  std::memcpy(entry.bytes.data(), message.data(), message.size());
}

// Whether more can be collected; the age counts from the first time.
bool Outbox::MayWait(const MessageQueue& queue) {
  if (queue.empty() || count_ == kMost) return false;
  if (pending()) return !OlderThan(kMostCollecting);
  since_.store(Clock::now().time_since_epoch().count(), std::memory_order_relaxed);
  return true;
}

bool Outbox::OlderThan(microseconds age) const {
  const Clock::rep since = since_.load(std::memory_order_relaxed);
  return since != kNothing &&
         Clock::now().time_since_epoch().count() - since >= Clock::duration(age).count();
}

bool Outbox::overdue() const { return OlderThan(kOverdue); }

void Outbox::Flush() {
  const std::lock_guard lock(mutex_);
  FlushLocked();
}

// One call a peer; each peer's own messages keep their order.
void Outbox::FlushLocked() {
  std::array<Peer::Message, kMost> messages;
  for (std::size_t first = 0; first < count_; ++first) {
    const std::shared_ptr<Peer> peer = std::move(entries_[first].peer);
    if (peer == nullptr) continue;  // went with an earlier one's
    std::size_t many = 0;
    messages[many++] = {entries_[first].bytes.data(), entries_[first].length};
    for (std::size_t at = first + 1; at < count_; ++at) {
      Entry& entry = entries_[at];
      if (entry.peer != peer) continue;
      entry.peer.reset();
      messages[many++] = {entry.bytes.data(), entry.length};
    }
    SendTo(peer, std::span(messages).first(many));
  }
  count_ = 0;
  since_.store(kNothing, std::memory_order_relaxed);
}

void Outbox::SendTo(const std::shared_ptr<Peer>& peer, std::span<const Peer::Message> messages) {
  if (peer->Send(messages) == Peer::Sent::kWaiting) full_(peer);
}

}  // namespace board::mbus
