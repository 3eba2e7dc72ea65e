#include "servers.h"

#include <modbus/modbus.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <stdexcept>
#include <system_error>

#include "modbus_link.h"
#include "seqpacket.h"
#include "stub/frame_layout.h"
#include "support/daemon.h"

namespace bench {
namespace {

namespace bus = ZEPH_MCUC;

constexpr std::uint32_t kLoadTask = 0x7E0002;

// A server that is this program's own code in a forked process.
class Forked : public Server {
 public:
  template <class Body>
  explicit Forked(Body body) : pid_(fork()) {
    if (pid_ < 0) throw std::system_error(errno, std::generic_category(), "fork");
    if (pid_ != 0) return;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    body();
    _exit(0);
  }
  ~Forked() override {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
  int pid() const override { return pid_; }

 private:
  const int pid_;
};

void Echo(int listener) {
  const int peer = accept(listener, nullptr, nullptr);
  std::array<std::uint8_t, 256> packet;
  while (true) {
    const ssize_t size = recv(peer, packet.data(), packet.size(), 0);
    if (size <= 0 || send(peer, packet.data(), static_cast<std::size_t>(size), 0) < 0) return;
  }
}

class BareSocket : public Forked {
 public:
  BareSocket(const std::filesystem::path& path, int listener)
      : Forked([listener] {
          while (true) Echo(listener);
        }),
        path_(path) {
    close(listener);
  }
  std::unique_ptr<Link> Connect() override {
    return std::make_unique<SeqpacketLink>(ConnectTo(path_), ReadRequest(0).size());
  }

 private:
  const std::filesystem::path path_;
};

void ServeModbus(modbus_t* context, int listener) {
  modbus_mapping_t* mapping = modbus_mapping_new(0, 0, 16, 0);
  std::array<std::uint8_t, MODBUS_TCP_MAX_ADU_LENGTH> request;
  while (true) {
    int socket = listener;
    if (modbus_tcp_accept(context, &socket) < 0) return;
    int size = 0;
    while ((size = modbus_receive(context, request.data())) >= 0) {
      if (size > 0) modbus_reply(context, request.data(), size, mapping);
    }
    modbus_close(context);
  }
}

int PortOf(int socket) {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size);
  return ntohs(address.sin_port);
}

class Modbus : public Forked {
 public:
  Modbus(modbus_t* context, int listener)
      : Forked([=] { ServeModbus(context, listener); }), port_(PortOf(listener)) {
    close(listener);
    modbus_free(context);
  }
  std::unique_ptr<Link> Connect() override { return ConnectModbus(port_); }

 private:
  const int port_;
};

class QuivordServer : public Server {
 public:
  explicit QuivordServer(const std::filesystem::path& board) : daemon_({.board = board}) {
    if (!daemon_.WaitUntilItAnswers()) {
      throw std::runtime_error("the daemon does not answer: " + daemon_.OutputText());
    }
  }
  int pid() const override { return daemon_.pid(); }
  std::unique_ptr<Link> Connect() override {
    const int socket = ConnectTo(daemon_.board() / "run" / "mbus");
    std::array<std::uint8_t, 4> id;
    bus::DWQ_ENCDW(id.data(), kLoadTask);
    if (send(socket, id.data(), id.size(), MSG_NOSIGNAL) < 0) {
      throw std::runtime_error("cannot register on the bus");
    }
    return std::make_unique<SeqpacketLink>(socket, bus::kEnvelopeSize + bus::FrameSize(4));
  }

 private:
  support::Daemon daemon_;
};

}  // namespace

std::unique_ptr<Server> StartBareSocket(const std::filesystem::path& folder) {
  const std::filesystem::path path = folder / "bare";
  return std::make_unique<BareSocket>(path, ListenOn(path));
}

std::unique_ptr<Server> StartModbus() {
  modbus_t* context = modbus_new_tcp("127.0.0.1", 0);  // any free port
  const int listener = context == nullptr ? -1 : modbus_tcp_listen(context, 1);
  if (listener < 0) throw std::runtime_error("libmodbus cannot listen on the loopback address");
  return std::make_unique<Modbus>(context, listener);
}

std::unique_ptr<Server> StartDaemon(const std::filesystem::path& folder) {
  const std::filesystem::path board = folder / "board";
  std::filesystem::create_directory(board);
  return std::make_unique<QuivordServer>(board);
}

}  // namespace bench
