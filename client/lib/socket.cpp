#include "socket.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string>

#include "stub/mcucmessagestruct_layout.h"

namespace quivord {
namespace {

int MillisecondsUntil(Clock::time_point deadline) {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
  return static_cast<int>(std::clamp<std::int64_t>(left, 0, 60'000));
}

Outcome WaitForRoom(int socket, Clock::time_point deadline) {
  pollfd room{socket, POLLOUT, 0};
  if (poll(&room, 1, MillisecondsUntil(deadline)) < 0 && errno != EINTR) {
    return Error{Trouble::kDisconnected, std::strerror(errno)};
  }
  if (room.revents == 0 && Clock::now() >= deadline) {
    return Error{Trouble::kTimeout, "the daemon takes no more requests for now"};
  }
  return Done{};
}

bool OtherSideClosed(int socket) {
  pollfd state{socket, POLLRDHUP, 0};
  return poll(&state, 1, 0) == 1;
}

// Connects, and leaves the socket as one that never waits. Where as many wait already as a busy
// daemon lets wait, the connection gets its turn within a second or isn't made.
bool ConnectInTime(int socket, const sockaddr_un& address) {
  constexpr timeval kLimit{.tv_sec = 1, .tv_usec = 0};
  int result = setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &kLimit, sizeof kLimit);
  if (result != 0) return false;
  do {
    result = connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  } while (result != 0 && errno == EINTR);
  return result == 0 && fcntl(socket, F_SETFL, O_NONBLOCK) == 0;
}

Outcome Register(int socket, std::uint32_t id) {
  std::array<std::uint8_t, 4> packet;
  ZEPH_MCUC::DWQ_ENCDW(packet.data(), id);
  return SendPacket(socket, packet, Clock::now() + std::chrono::seconds(1));
}

}  // namespace

Result<Descriptor> ConnectToBus(const std::filesystem::path& board, std::uint32_t id) {
  const std::string path = board / "run" / "mbus";
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) {
    return Error{Trouble::kWrongUse, "the board folder's path is too long: " + path};
  }
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  Descriptor socket(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
  if (!socket || !ConnectInTime(socket.get(), address)) {
    return Error{Trouble::kNoDaemon,
                 "no daemon on the board " + board.string() + " (" + std::strerror(errno) + ")"};
  }
  Outcome registered = Register(socket.get(), id);
  if (!registered) return registered.error();
  return socket;
}

Outcome SendPacket(int socket, std::span<const std::uint8_t> packet, Clock::time_point deadline) {
  while (send(socket, packet.data(), packet.size(), MSG_NOSIGNAL) < 0) {
    if (errno == EINTR) continue;
    if (errno != EAGAIN) {
      return Error{Trouble::kDisconnected, "the bus has ended the connection"};
    }
    Outcome room = WaitForRoom(socket, deadline);
    if (!room) return room;
  }
  return Done{};
}

Received ReceivePacket(int socket, std::span<std::uint8_t> buffer) {
  ssize_t size = 0;
  do {
    size = recv(socket, buffer.data(), buffer.size(), MSG_DONTWAIT);
  } while (size < 0 && errno == EINTR);
  if (size < 0) return {errno == EAGAIN ? Received::Kind::kNothing : Received::Kind::kEnd};
  if (size == 0 && OtherSideClosed(socket)) return {Received::Kind::kEnd};
  return {Received::Kind::kPacket, buffer.first(static_cast<std::size_t>(size))};
}

}  // namespace quivord
