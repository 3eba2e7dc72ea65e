// What the checks share: their options, the report, buffers that notice a write past their end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

namespace check {

struct Card {
  std::uint8_t port;
  std::uint16_t board;
};

struct Options {
  bool lasting = false;               // also what can't be put back
  std::optional<std::uint32_t> echo;  // a task on the bus that sends back whatever it gets
  std::optional<Card> card;           // a receiving card that answers
};

// The lines of the report; one thread writes them.
class Report {
 public:
  // What the next lines are about: the name of a header.
  void Begin(std::string_view subject) { subject_ = subject; }

  // A line that says whether `claim` holds; gives `good` back.
  bool Holds(bool good, std::string_view claim);

  // A line that says that nobody tried, and why.
  void Skip(std::string_view claim, std::string_view why);

  // The last line, with the numbers.
  void End() const;

  int broken() const { return broken_; }

 private:
  std::string_view subject_;
  int holding_ = 0;
  int broken_ = 0;
  int skipped_ = 0;
};

// A buffer between two fences. What is put into it at first shows whether somebody has written.
class Buffer {
 public:
  explicit Buffer(std::size_t size);

  std::uint8_t* data() { return bytes_.data() + kFence; }
  std::size_t size() const { return bytes_.size() - 2 * kFence; }

  // Whether all bytes, or all from `first` up, the fences included, are as they were at first.
  bool Untouched() const { return Untouched(0); }
  bool Untouched(std::size_t first) const;

  bool operator==(const Buffer&) const = default;

 private:
  static constexpr std::size_t kFence = 32;
  static constexpr std::uint8_t kFresh = 0xA5;

  std::vector<std::uint8_t> bytes_;
};

// Runs `work(0)` to `work(threads - 1)` at the same time; true where all of them gave true.
bool AtOnce(int threads, const std::function<bool(int)>& work);

// The checks, a header or two each.
void System(Report& report, const Options& options);
void Devices(Report& report, const Options& options);  // the rest of System
void Environment(Report& report, const Options& options);
void Flash(Report& report, const Options& options);
void Fpga(Report& report, const Options& options);
void Cards(Report& report, const Options& options);
void Bus(Report& report, const Options& options);
void Inputs(Report& report, const Options& options);
void Edid(Report& report, const Options& options);
void Gamma(Report& report, const Options& options);
void Network(Report& report, const Options& options);
void Info(Report& report, const Options& options);

}  // namespace check
