// How an operation of the client ended: a value, or what went wrong and in which way.
#pragma once

#include <string>
#include <utility>
#include <variant>

namespace quivord {

enum class Trouble {
  kWrongUse,      // the request can't be put into a frame
  kNoDaemon,      // nobody listens on the board's bus
  kTimeout,       // no answer in time
  kDisconnected,  // the daemon, or the bus, ended the connection
  kGarbled,       // an answer that is no valid frame
};

struct Error {
  Trouble trouble;
  std::string
      text;  // one sentence without a full stop: what happened, and where it helps, what to do
};

// A value or an error; must be looked at. `value()` and `error()` want the fitting state.
template <class T>
class [[nodiscard]] Result {
 public:
  Result(T value) : state_(std::move(value)) {}      // NOLINT: converts on purpose
  Result(Error error) : state_(std::move(error)) {}  // NOLINT: converts on purpose

  explicit operator bool() const { return std::holds_alternative<T>(state_); }
  T& value() { return std::get<T>(state_); }
  const T& value() const { return std::get<T>(state_); }
  const Error& error() const { return std::get<Error>(state_); }

 private:
  std::variant<T, Error> state_;
};

struct Done {};
using Outcome = Result<Done>;

}  // namespace quivord
