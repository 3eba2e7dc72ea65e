// A peer on the message bus of a board: asks the daemon, many requests at a time, and gets its
// reports.
//
//   auto client = quivord::Client::Connect({.board = "/tmp/board", .id = 0x7F0001});
//   if (!client) …                                   // client.error().text says why
//   auto reply = client.value()->Call({.address = 0xF0000100, .length = 4}, 2s);
//   if (reply && reply.value().ack == 0) …           // reply.value().data
//
// All functions may be called from any thread. Callbacks run on the client's own thread, one at a
// time; they may `Start` requests, and must neither `Call` nor destroy the client.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>

#include "quivord/messages.h"
#include "quivord/result.h"

namespace quivord {

struct Connection {
  std::filesystem::path board;  // the board folder
  std::uint32_t id = 0;         // task identifier to register as, slot in the top byte; not 0

  // Called for each report. Null drops them.
  std::function<void(const Report&)> on_report = nullptr;

  // Called once when the connection has ended from the other side; every request in flight has been
  // completed before.
  std::function<void(const Error&)> on_end = nullptr;
};

class Client {
 public:
  using Completion = std::function<void(Result<Reply>)>;

  // Connects and registers. kNoDaemon where nobody listens, kWrongUse for a path that is too long.
  // An identifier that the bus refuses shows as kDisconnected in the first request.
  static Result<std::unique_ptr<Client>> Connect(Connection connection);

  // Completes what is in flight with kDisconnected, then ends the connection.
  ~Client();

  // Sends `request` and waits for its reply, `timeout` at most. An ack other than 0 is a reply, not
  // an error. After kTimeout a late reply is dropped.
  Result<Reply> Call(const Request& request, std::chrono::milliseconds timeout);

  // Sends `request`, waiting while the daemon holds this peer back, `timeout` at most; `completion`
  // gets the reply, or kTimeout when it is not there `timeout` after this call, exactly once.
  // On an error nothing was sent and `completion` will not be called.
  Outcome Start(const Request& request, std::chrono::milliseconds timeout, Completion completion);

  // Packets that were neither a reply to a request in flight nor a report.
  std::uint64_t dropped() const;

 private:
  class Impl;
  explicit Client(std::unique_ptr<Impl> impl);

  std::unique_ptr<Impl> impl_;
};

}  // namespace quivord
