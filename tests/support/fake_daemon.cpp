#include "support/fake_daemon.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include "stub/mcucmessagestruct_layout.h"

namespace support {
namespace {

constexpr int kPatience_ms = 10'000;

bool Readable(int descriptor) {
  pollfd state{descriptor, POLLIN, 0};
  return poll(&state, 1, kPatience_ms) == 1;
}

[[noreturn]] void Throw(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace

FakeDaemon::FakeDaemon() {
  std::string folder = std::filesystem::temp_directory_path() / "quivord-fake-XXXXXX";
  if (mkdtemp(folder.data()) == nullptr) Throw("mkdtemp");
  board_ = folder;
  std::filesystem::create_directory(board_ / "run");
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string path = board_ / "run" / "mbus";
  std::memcpy(address.sun_path, path.data(), path.size());
  listener_ = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
  if (bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      listen(listener_, 1) != 0) {
    Throw("listen");
  }
}

FakeDaemon::~FakeDaemon() {
  HangUp();
  close(listener_);
  std::error_code ignored;  // a folder that can't be removed is no failure of the test
  std::filesystem::remove_all(board_, ignored);
}

std::uint32_t FakeDaemon::Accept() {
  HangUp();
  if (Readable(listener_)) client_ = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
  const auto registration = Receive();
  if (!registration.has_value() || registration->size() != 4) return 0;
  return ZEPH_MCUC::DWQ_DECDW(registration->data());
}

std::optional<Bytes> FakeDaemon::Receive() {
  if (client_ < 0 || !Readable(client_)) return std::nullopt;
  Bytes packet(1 << 17);
  const ssize_t size = recv(client_, packet.data(), packet.size(), 0);
  if (size <= 0) return std::nullopt;
  packet.resize(static_cast<std::size_t>(size));
  return packet;
}

void FakeDaemon::Send(const Bytes& packet) {
  if (send(client_, packet.data(), packet.size(), MSG_NOSIGNAL) < 0) Throw("send");
}

void FakeDaemon::HangUp() {
  if (client_ >= 0) close(client_);
  client_ = -1;
}

}  // namespace support
