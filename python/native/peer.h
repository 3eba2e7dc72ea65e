// What the Python package stands on: a peer on a board's bus whose calls give a value or throw. It
// knows nothing of Python; all functions may be called from any thread.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "access/place.h"
#include "access/registers.h"
#include "quivord/client.h"
#include "wall/model.h"

namespace quivord::python {

using Bytes = std::vector<std::uint8_t>;

// An error on its way to the caller.
class Fault : public std::exception {
 public:
  explicit Fault(Error error) : error_(std::move(error)) {}
  const Error& error() const { return error_; }
  const char* what() const noexcept override { return error_.text.c_str(); }

 private:
  Error error_;
};

// Reports that have come and wait to be taken. What is not taken in time pushes out the oldest.
class Inbox {
 public:
  void Put(const Report& report);
  void End(const Error& error);

  // The oldest report, waiting `wait` at most; nothing where none came. Once all are taken and the
  // connection has ended: a fault.
  std::optional<Report> Take(std::chrono::milliseconds wait);

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Report> reports_;
  std::optional<Error> ended_;
};

// Whose registers are meant, in words: "sender" or another of `access::kDevices`. Of the others
// port and place, nothing for all.
struct Whose {
  std::string device;
  std::optional<int> port;
  std::optional<int> card;
};

class Peer {
 public:
  // Joins the bus of the board in `folder`, empty for the one that the daemon would take; as
  // `task`, one of `access::kTasks`, or with an identifier of its own where that is empty.
  Peer(const std::string& folder, const std::string& task);

  const access::Place& place() const { return place_; }

  // Requests. `seconds` is how long each answer may take.
  Bytes Read(const Whose& whose, std::int64_t address, std::int64_t length, double seconds) const;
  void Write(const Whose& whose, std::int64_t address, Bytes data, double seconds) const;

  // The sending card's wall and its brightness plan, as JSON; `Configure` and `Send` take a file's
  // text.
  std::string ShowWall(double seconds) const;
  std::string ConfigureWall(const std::string& file, bool wait, double seconds) const;
  std::string ShowPlan(double seconds) const;
  void SendPlan(const std::string& file, double seconds) const;

  Inbox& inbox() { return *inbox_; }

 private:
  access::Registers Registers(const Whose& whose, double seconds) const;

  access::Place place_;
  std::shared_ptr<Inbox> inbox_ = std::make_shared<Inbox>();
  std::unique_ptr<Client> client_;
};

// A brightness from "153" or "60%".
std::uint8_t BrightnessOf(const std::string& word);

}  // namespace quivord::python
