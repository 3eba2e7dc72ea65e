#include "record/peers.h"

#include <poll.h>

#include <algorithm>
#include <cstdio>

#include "lib/packet.h"

namespace quivord::record {
namespace {

namespace bus = ZEPH_MCUC;

Bytes PacketOf(std::uint32_t peer, std::uint32_t tag, const Bytes& frame) {
  Bytes packet(bus::kEnvelopeSize + frame.size());
  bus::WriteEnvelope({.uiid = peer,
                      .detail = tag,
                      .smallLabel = bus::LABEL_MSG_LOCAL,
                      .largeLabel = bus::LABEL_MSG,
                      .payloadLength = static_cast<std::uint32_t>(frame.size())},
                     packet.data());
  std::copy(frame.begin(), frame.end(), packet.begin() + bus::kEnvelopeSize);
  return packet;
}

Error Ended(std::uint32_t peer) {
  char text[128];
  std::snprintf(
      text, sizeof text,
      "the connection as task 0x%06X has ended: the daemon is gone, refuses that task, or "
      "another peer took its place",
      peer);
  return {Trouble::kDisconnected, text};
}

}  // namespace

Peers::Peers(std::filesystem::path board, Take take)
    : board_(std::move(board)), take_(std::move(take)), buffer_(kMostPacket) {}

Outcome Peers::Join(std::uint32_t peer) {
  if (sockets_.contains(peer)) return Done{};
  Result<Descriptor> socket = ConnectToBus(board_, peer);
  if (!socket) return socket.error();
  sockets_.emplace(peer, std::move(socket.value()));
  return Done{};
}

Outcome Peers::Send(std::uint32_t peer, std::uint32_t tag, const Bytes& frame,
                    Clock::time_point deadline) {
  return SendPacket(sockets_.at(peer).get(), PacketOf(peer, tag, frame), deadline);
}

Outcome Peers::Listen(Clock::time_point deadline) {
  std::vector<pollfd> sources;
  for (const auto& [peer, socket] : sockets_) sources.push_back({socket.get(), POLLIN, 0});
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
  poll(sources.data(), sources.size(), static_cast<int>(std::clamp<std::int64_t>(left, 0, 60'000)));
  auto source = sources.begin();
  for (const auto& [peer, socket] : sockets_) {
    if ((source++)->revents == 0) continue;
    Outcome taken = TakeAll(peer, socket.get());
    if (!taken) return taken;
  }
  return Done{};
}

Outcome Peers::TakeAll(std::uint32_t peer, int socket) {
  for (;;) {
    const Received received = ReceivePacket(socket, buffer_);
    if (received.kind == Received::Kind::kNothing) return Done{};
    if (received.kind == Received::Kind::kEnd) return Ended(peer);
    if (received.packet.size() < bus::kEnvelopeSize) continue;
    const auto frame = received.packet.subspan(bus::kEnvelopeSize);
    take_({peer, bus::ReadEnvelope(received.packet.data()).detail, {frame.begin(), frame.end()}});
  }
}

}  // namespace quivord::record
