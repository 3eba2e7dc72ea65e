#include "support/raw_peer.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

#include "stub/mcucmessagestruct_layout.h"

namespace support {
namespace {

using std::chrono::milliseconds;

constexpr std::size_t kMostPacket = 1 << 17;  // above what the bus may send, to see it if it does

int Connect(const std::filesystem::path& board) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string path = board / "run" / "mbus";
  std::memcpy(address.sun_path, path.data(), std::min(path.size(), sizeof address.sun_path - 1));
  const int descriptor = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
  if (connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    const int error = errno;
    close(descriptor);
    throw std::system_error(error, std::generic_category(), path);
  }
  return descriptor;
}

bool Readable(int socket, milliseconds limit) {
  pollfd state{socket, POLLIN, 0};
  return poll(&state, 1, static_cast<int>(limit.count())) == 1;
}

}  // namespace

Bytes Registration(std::uint32_t id) {
  Bytes packet(4);
  ZEPH_MCUC::DWQ_ENCDW(packet.data(), id);
  return packet;
}

Bytes FrameOf(const ZEPH_MCUC::FrameHead& head, const Bytes& data) {
  const auto size = ZEPH_MCUC::FrameSize(static_cast<std::int32_t>(data.size()));
  Bytes bytes(static_cast<std::size_t>(size));
  ZEPH_MCUC::WriteFrame(head, data, bytes.data());
  return bytes;
}

Bytes Message(const Bytes& frame, std::uint32_t id, std::uint32_t tag,
              std::optional<std::uint32_t> label_size) {
  Bytes packet(ZEPH_MCUC::kEnvelopeSize + frame.size());
  const auto size = static_cast<std::uint32_t>(frame.size());
  ZEPH_MCUC::WriteEnvelope({.uiid = id,
                            .detail = tag,
                            .largeLabel = ZEPH_MCUC::LABEL_MSG,
                            .payloadLength = label_size.value_or(size)},
                           packet.data());
  std::copy(frame.begin(), frame.end(), packet.begin() + ZEPH_MCUC::kEnvelopeSize);
  return packet;
}

RawPeer::RawPeer(const std::filesystem::path& board, std::uint32_t id) : socket_(Connect(board)) {
  if (id != 0) Send(Registration(id));
}

RawPeer::RawPeer(RawPeer&& other) noexcept : socket_(std::exchange(other.socket_, -1)) {}

RawPeer::~RawPeer() { Close(); }

void RawPeer::Close() {
  if (socket_ >= 0) close(socket_);
  socket_ = -1;
}

bool RawPeer::Send(const Bytes& packet) {
  return send(socket_, packet.data(), packet.size(), MSG_NOSIGNAL) >= 0;
}

bool RawPeer::TrySend(const Bytes& packet) {
  return send(socket_, packet.data(), packet.size(), MSG_NOSIGNAL | MSG_DONTWAIT) >= 0;
}

std::optional<Bytes> RawPeer::Receive(milliseconds limit) {
  if (!Readable(socket_, limit)) return std::nullopt;
  Bytes packet(kMostPacket);
  const ssize_t size = recv(socket_, packet.data(), packet.size(), 0);
  if (size <= 0) return std::nullopt;
  packet.resize(static_cast<std::size_t>(size));
  return packet;
}

bool RawPeer::Ended(milliseconds limit) {
  while (Readable(socket_, limit)) {
    std::uint8_t byte = 0;
    if (recv(socket_, &byte, sizeof byte, 0) <= 0) return true;
  }
  return false;
}

}  // namespace support
