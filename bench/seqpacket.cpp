#include "seqpacket.h"

#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <system_error>

#include "stub/frame_layout.h"

namespace bench {
namespace {

namespace bus = ZEPH_MCUC;

constexpr std::uint32_t kTestRegister = 0xF0000100;
constexpr int kPatience_s = 5;

[[noreturn]] void Throw(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

sockaddr_un Address(const std::filesystem::path& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.native().size() >= sizeof address.sun_path) throw std::runtime_error("path too long");
  std::strcpy(address.sun_path, path.c_str());  // NOLINT: measured above
  return address;
}

int NewSocket() {
  const int descriptor = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
  if (descriptor < 0) Throw("socket");
  return descriptor;
}

void SetTag(std::uint32_t tag, std::uint8_t* packet) {
  std::memcpy(packet + offsetof(bus::ipcHeaderInfo, detail), &tag, sizeof tag);
}

}  // namespace

std::vector<std::uint8_t> ReadRequest(std::uint32_t tag, std::uint16_t bytes) {
  std::vector<std::uint8_t> packet(bus::kEnvelopeSize + bus::FrameSize(0));
  bus::WriteEnvelope({.detail = tag,
                      .largeLabel = bus::LABEL_MSG,
                      .payloadLength = static_cast<std::uint32_t>(bus::FrameSize(0))},
                     packet.data());
  bus::WriteFrame({.registerAddress = kTestRegister, .dataLength = bytes}, {},
                  packet.data() + bus::kEnvelopeSize);
  return packet;
}

int ListenOn(const std::filesystem::path& path) {
  const sockaddr_un address = Address(path);
  const int descriptor = NewSocket();
  if (bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      listen(descriptor, SOMAXCONN) != 0) {
    Throw("listen");
  }
  return descriptor;
}

int ConnectTo(const std::filesystem::path& path) {
  const sockaddr_un address = Address(path);
  const int descriptor = NewSocket();
  if (connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    Throw("connect");
  }
  return descriptor;
}

SeqpacketLink::SeqpacketLink(int socket, std::uint16_t bytes, std::size_t reply_size)
    : socket_(socket), reply_size_(reply_size), request_(ReadRequest(0, bytes)) {
  const timeval patience{.tv_sec = kPatience_s, .tv_usec = 0};
  setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
}

SeqpacketLink::~SeqpacketLink() { close(socket_); }

void SeqpacketLink::Send(std::uint32_t tag) {
  SetTag(tag, request_.data());
  if (send(socket_, request_.data(), request_.size(), MSG_NOSIGNAL) < 0) Throw("send");
}

void SeqpacketLink::Receive(std::vector<std::uint32_t>& tags) {
  std::array<std::uint8_t, 2048> packet;
  const ssize_t size = recv(socket_, packet.data(), packet.size(), 0);
  if (size < 0) Throw("no reply");
  if (static_cast<std::size_t>(size) != reply_size_) {
    throw std::runtime_error("a reply of " + std::to_string(size) + " bytes");
  }
  tags.push_back(bus::ReadEnvelope(packet.data()).detail);
}

}  // namespace bench
