#include "servers.h"

#include <modbus/modbus.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
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

// Serves whoever connects: calls `serve(socket)` for each socket that has something to read, until
// it answers that the peer has gone.
template <class Serve>
[[noreturn]] void ServeAll(int listener, Serve serve) {
  const int poller = epoll_create1(EPOLL_CLOEXEC);
  const auto watch = [poller](int socket) {
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = socket;
    epoll_ctl(poller, EPOLL_CTL_ADD, socket, &event);
  };
  watch(listener);
  std::array<epoll_event, 16> events;
  while (true) {
    const int count = epoll_wait(poller, events.data(), events.size(), -1);
    for (int i = 0; i < count; ++i) {
      const int socket = events[static_cast<std::size_t>(i)].data.fd;
      if (socket == listener) {
        watch(accept(listener, nullptr, nullptr));
      } else if (!serve(socket)) {
        close(socket);
      }
    }
  }
}

// Sends one packet back; false where none came.
bool EchoOne(int peer, int flags) {
  std::array<std::uint8_t, 256> packet;
  const ssize_t size = recv(peer, packet.data(), packet.size(), flags);
  return size > 0 && send(peer, packet.data(), static_cast<std::size_t>(size), 0) >= 0;
}

// What is there, up to a batch, so that the others get their turn.
bool EchoBatch(int peer) {
  constexpr int kBatch = 32;
  if (!EchoOne(peer, 0)) return false;
  for (int i = 1; i < kBatch && EchoOne(peer, MSG_DONTWAIT);) ++i;
  return true;
}

void ServeEcho(int listener, Peers peers) {
  if (peers == Peers::kSeveral) ServeAll(listener, EchoBatch);
  while (true) {
    const int peer = accept(listener, nullptr, nullptr);
    while (EchoOne(peer, 0)) continue;
    close(peer);
  }
}

class BareSocket : public Forked {
 public:
  BareSocket(const std::filesystem::path& path, int listener, Peers peers)
      : Forked([=] { ServeEcho(listener, peers); }), path_(path) {
    close(listener);
  }
  std::unique_ptr<Link> Connect(std::uint32_t /*peer*/) override {
    return std::make_unique<SeqpacketLink>(ConnectTo(path_), 4, ReadRequest(0, 4).size());
  }

 private:
  const std::filesystem::path path_;
};

// One request, answered; false where the peer has gone.
bool AnswerModbus(modbus_t* context, modbus_mapping_t* mapping) {
  std::array<std::uint8_t, MODBUS_TCP_MAX_ADU_LENGTH> request;
  const int size = modbus_receive(context, request.data());
  if (size > 0) modbus_reply(context, request.data(), size, mapping);
  return size >= 0;
}

void ServeModbus(modbus_t* context, int listener, Peers peers) {
  modbus_mapping_t* mapping = modbus_mapping_new(0, 0, 16, 0);
  if (peers == Peers::kSeveral) {
    ServeAll(listener, [=](int socket) {
      modbus_set_socket(context, socket);
      return AnswerModbus(context, mapping);
    });
  }
  while (true) {
    int socket = listener;
    if (modbus_tcp_accept(context, &socket) < 0) return;
    while (AnswerModbus(context, mapping)) continue;
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
  Modbus(modbus_t* context, int listener, Peers peers)
      : Forked([=] { ServeModbus(context, listener, peers); }), port_(PortOf(listener)) {
    close(listener);
    modbus_free(context);
  }
  std::unique_ptr<Link> Connect(std::uint32_t /*peer*/) override { return ConnectModbus(port_); }

 private:
  const int port_;
};

class QuivordServer : public Server {
 public:
  QuivordServer(const std::filesystem::path& board, std::uint16_t bytes, const std::string& program)
      : daemon_({.board = board, .program = program}), bytes_(bytes) {
    if (!daemon_.WaitUntilItAnswers()) {
      throw std::runtime_error("the daemon does not answer: " + daemon_.OutputText());
    }
  }
  int pid() const override { return daemon_.pid(); }
  std::unique_ptr<Link> Connect(std::uint32_t peer) override {
    const int socket = ConnectTo(daemon_.board() / "run" / "mbus");
    std::array<std::uint8_t, 4> id;
    bus::DWQ_ENCDW(id.data(), kLoadTask + peer);
    if (send(socket, id.data(), id.size(), MSG_NOSIGNAL) < 0) {
      throw std::runtime_error("cannot register on the bus");
    }
    return std::make_unique<SeqpacketLink>(socket, bytes_,
                                           bus::kEnvelopeSize + bus::FrameSize(bytes_));
  }

 private:
  support::Daemon daemon_;
  const std::uint16_t bytes_;
};

}  // namespace

std::unique_ptr<Server> StartBareSocket(const std::filesystem::path& folder, Peers peers) {
  const std::filesystem::path path = folder / (peers == Peers::kOne ? "bare" : "bare-several");
  return std::make_unique<BareSocket>(path, ListenOn(path), peers);
}

std::unique_ptr<Server> StartModbus(Peers peers) {
  modbus_t* context = modbus_new_tcp("127.0.0.1", 0);  // any free port
  const int listener = context == nullptr ? -1 : modbus_tcp_listen(context, SOMAXCONN);
  if (listener < 0) throw std::runtime_error("libmodbus cannot listen on the loopback address");
  return std::make_unique<Modbus>(context, listener, peers);
}

std::unique_ptr<Server> StartDaemon(const std::filesystem::path& folder, std::uint16_t bytes,
                                    const std::string& program) {
  std::string board = folder / "board-XXXXXX";
  if (mkdtemp(board.data()) == nullptr) throw std::runtime_error("cannot make a board's folder");
  return std::make_unique<QuivordServer>(board, bytes, program);
}

}  // namespace bench
