// The page over HTTP: its files, what the board holds as server-sent events, and orders.
//
//   GET  /            the page, and its files by name
//   GET  /state       the whole state, once
//   GET  /events      the whole state as the event `state`, then changes as events `patch`
//   POST /order       an order, where control is switched on
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "live/publisher.h"

namespace httplib {
class Server;
}

namespace quivord::live {

struct ServerOptions {
  std::filesystem::path folder;
  std::string address = "127.0.0.1";
  int port = 0;  // 0: any that is free
  bool control = false;
};

class Server {
 public:
  static constexpr std::size_t kThreads = 64;

  explicit Server(ServerOptions options);
  ~Server();

  // Takes the port. False where it can't be had.
  bool Bind();
  int port() const { return port_; }

  // Serves until `Stop`.
  void Serve();
  // From any thread, once.
  void Stop();

 private:
  const ServerOptions options_;
  const std::string token_;
  int port_ = 0;
  Publisher publisher_;
  std::unique_ptr<httplib::Server> http_;
};

}  // namespace quivord::live
