// The last requests of clients and reports of the daemon, as the board's trace tells of them. One
// thread at a time.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

#include "live/busline.h"

namespace quivord::live {

struct LogEntry {
  enum class Kind { kRequest, kRefusal, kReport };

  std::uint64_t number = 0;  // rises by 1 from entry to entry
  std::int64_t at_us = 0;    // on the PC's monotonic clock
  Kind kind = Kind::kRequest;
  std::string text;

  bool operator==(const LogEntry&) const = default;
};

class Log {
 public:
  static constexpr std::size_t kMost = 60;      // entries kept
  static constexpr std::size_t kPending = 256;  // requests remembered until their replies come

  // Takes a line of the trace; one that doesn't tell of the bus is passed over.
  void Take(std::string_view line);

  const std::deque<LogEntry>& entries() const { return entries_; }

 private:
  struct Asked {
    std::uint32_t peer;
    std::uint32_t address;
    bool operator==(const Asked&) const = default;
  };

  void TakeRequest(const BusLine& line);
  void TakeAnswer(const BusLine& line);
  void Add(const BusLine& line, LogEntry::Kind kind, std::string text);

  std::deque<LogEntry> entries_;
  std::deque<Asked> asked_;
  std::uint64_t next_ = 1;
};

}  // namespace quivord::live
