#include "modbus_link.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace bench {
namespace {

constexpr std::size_t kReplySize = 13;  // header, function, byte count, two registers
constexpr int kPatience_s = 5;

class ModbusLink : public Link {
 public:
  explicit ModbusLink(int socket) : socket_(socket) {
    const int on = 1;
    const timeval patience{.tv_sec = kPatience_s, .tv_usec = 0};
    setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
  }
  ~ModbusLink() override { close(socket_); }

  void Send(std::uint32_t tag) override {
    const std::array<std::uint8_t, 12> request = {
        static_cast<std::uint8_t>(tag >> 8),
        static_cast<std::uint8_t>(tag),  // transaction
        0,
        0,
        0,
        6,  // protocol, bytes that follow
        0xFF,
        3,
        0,
        0,
        0,
        2};  // unit, read holding registers, from 0, two of them
    if (send(socket_, request.data(), request.size(), MSG_NOSIGNAL) !=
        static_cast<ssize_t>(request.size())) {
      throw std::system_error(errno, std::generic_category(), "send");
    }
  }

  void Receive(std::vector<std::uint32_t>& tags) override {
    do {
      const ssize_t size = recv(socket_, bytes_.data() + have_, bytes_.size() - have_, 0);
      if (size <= 0) throw std::runtime_error("libmodbus does not answer");
      have_ += static_cast<std::size_t>(size);
    } while (have_ < kReplySize);
    std::size_t at = 0;
    for (; have_ - at >= kReplySize; at += kReplySize) {
      if (bytes_[at + 7] != 3) throw std::runtime_error("libmodbus answers with an error");
      tags.push_back(static_cast<std::uint32_t>(bytes_[at] << 8 | bytes_[at + 1]));
    }
    std::copy(bytes_.begin() + static_cast<std::ptrdiff_t>(at),
              bytes_.begin() + static_cast<std::ptrdiff_t>(have_), bytes_.begin());
    have_ -= at;
  }

 private:
  const int socket_;
  std::array<std::uint8_t, 4096> bytes_{};
  std::size_t have_ = 0;
};

}  // namespace

std::unique_ptr<Link> ConnectModbus(int port) {
  const int descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (descriptor < 0 ||
      connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    throw std::system_error(errno, std::generic_category(), "connect to libmodbus");
  }
  return std::make_unique<ModbusLink>(descriptor);
}

}  // namespace bench
