// How an operation of the client ended: a value, or what went wrong and in which way.
#pragma once

#include <optional>
#include <string>
#include <utility>

namespace quivord {

enum class Trouble {
  kRefused,       // the device refused, or would
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

// A value or an error; must be looked at. `value()` throws where there is none, `error()` means
// nothing where there is one.
template <class T>
class [[nodiscard]] Result {
 public:
  Result(T value) : value_(std::move(value)) {}      // NOLINT: converts on purpose
  Result(Error error) : error_(std::move(error)) {}  // NOLINT: converts on purpose

  explicit operator bool() const { return value_.has_value(); }
  T& value() { return value_.value(); }
  const T& value() const { return value_.value(); }
  const Error& error() const { return error_; }

 private:
  std::optional<T> value_;
  Error error_{};
};

struct Done {};
using Outcome = Result<Done>;

}  // namespace quivord
