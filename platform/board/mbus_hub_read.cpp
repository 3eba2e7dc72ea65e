// What peers send: registrations first, then messages for the daemon.
#include <sys/epoll.h>

#include <cstdio>
#include <cstring>
#include <utility>

#include "board/board.h"
#include "board/mbus_hub.h"
#include "board/mbus_warn.h"

namespace board::mbus {
namespace {

constexpr std::size_t kRegistrationSize = 4;

bool IsMessage(std::span<const std::uint8_t> packet) {
  if (packet.size() < kEnvelopeSize) return false;
  std::uint32_t frame = 0;
  std::memcpy(&frame, &packet[kFrameSizeOffset], sizeof frame);
  return frame == packet.size() - kEnvelopeSize;
}

}  // namespace

void Hub::Serve(Peer& peer, std::uint32_t events) {
  if (peer.closed) return;
  if ((events & EPOLLOUT) != 0 && peer.Flush()) {
    peer.writing = false;
    Watch(peer);
  }
  if (peer.reading && (events & ~std::uint32_t{EPOLLOUT}) != 0) ReadFrom(peer);
}

// One batch and no more: the poller comes back to what is left after all others had their turn.
void Hub::ReadFrom(Peer& peer) {
  const std::size_t admitted = peer.Admit(PacketReader::kBatch);
  if (admitted == 0) {
    peer.reading = false;
    Watch(peer);
    return;
  }
  const PacketReader::Batch batch = reader_.Read(peer.socket(), admitted);
  several_ = several_ || batch.count > 1;
  left_ = left_ || batch.count == admitted;
  for (std::size_t i = 0; i < batch.count; ++i) {
    if (!peer.registered) {
      if (!Register(peer, reader_.packet(i))) return Close(peer);
      continue;
    }
    mbus_msg_t* message = ToMessage(peer, reader_.packet(i), reader_.oversize(i));
    if (message != nullptr) Deliver(message);
  }
  if (batch.ended) Close(peer);
}

bool Hub::Register(Peer& peer, std::span<const std::uint8_t> packet) {
  if (packet.size() != kRegistrationSize) {
    Warn("ended a connection that began with %zu bytes instead of a task identifier",
         packet.size());
    return false;
  }
  const std::uint32_t id = packet[0] | std::uint32_t{packet[1]} << 8 |
                           std::uint32_t{packet[2]} << 16 | std::uint32_t{packet[3]} << 24;
  if (id == id_ || id == dispatcher_) {
    Warn("ended a connection: task identifier 0x%08x is taken, choose another", id);
    return false;
  }
  peer.id = id;
  peer.registered = true;
  const std::shared_ptr<Peer> replaced = registry_.Put(peer.shared_from_this());
  if (replaced != nullptr) Close(*replaced);
  return true;
}

mbus_msg_t* Hub::ToMessage(Peer& peer, std::span<const std::uint8_t> packet, bool oversize) {
  if (oversize || !IsMessage(packet)) {
    const std::uint64_t dropped = peer.CountDropped();
    if (WorthALine(dropped)) {
      Warn(
          "dropped a packet of %zu bytes%s from task 0x%08x: no envelope with the size of its "
          "frame (%llu so far)",
          packet.size(), oversize ? " and more" : "", peer.id,
          static_cast<unsigned long long>(dropped));
    }
    return nullptr;
  }
  mbus_msg_t* message = pool_.Take(static_cast<std::uint32_t>(packet.size()));
  std::memcpy(message->bytes.get(), packet.data(), packet.size());
  std::memcpy(&message->bytes[kIdOffset], &peer.id, sizeof peer.id);
  peer.CountIn(message->length);
  message->sender = peer.shared_from_this();
  return message;
}

void Hub::Deliver(mbus_msg_t* message) {
  TraceMessage('>', {message->bytes.get(), message->length});
  handler_(nullptr, self_, message, static_cast<int32_t>(message->length));
}

void TraceMessage(char direction, std::span<const std::uint8_t> message) {
  if (!Tracing(TraceKind::kBus)) return;
  std::uint32_t id = 0;
  std::memcpy(&id, &message[kIdOffset], sizeof id);
  const auto frame = message.subspan(kEnvelopeSize);
  char words[48];
  std::snprintf(words, sizeof words, "%c 0x%08x %zu ", direction, id, frame.size());
  Trace(TraceKind::kBus, words + Hex(frame.data(), frame.size()));
}

}  // namespace board::mbus
