// What a command prints: text for people, or JSON objects that each carry the version of the
// interface as `interface`.
#pragma once

#include <chrono>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>

namespace ctl {

enum class Tone { kGood, kBad, kDoubtful };

// Why some of what was printed has not reached standard output; empty where all has. For the end of
// the program: a fault shows until then.
std::string LostOutput();

class Output {
 public:
  explicit Output(bool json);

  // A result: `text` (lines, without the last line feed; an empty one prints nothing), or `object`
  // as one line of JSON. Goes out at once, so that a reader behind a pipe sees it.
  void Show(const std::string& text, const nlohmann::json& object) const;

  // A fault: "quivordctl: TEXT" on standard error, and with JSON an object with `error` and
  // `status` on standard output.
  void Fault(const std::string& text, int status) const;

  // `text` in a colour where standard output is a terminal that shows some, and NO_COLOR isn't set.
  std::string Paint(Tone tone, const std::string& text) const;

  // How far long work has come, on standard error and not with JSON. A step is a line of its own.
  // What changes in between is one line that is written over on a terminal, and elsewhere a line
  // every five seconds, so that work that is soon done says nothing. `done` of `all` is a bar on a
  // terminal, else a percentage.
  void Step(const std::string& text) const;
  void Progress(const std::string& text) const;
  void Progress(const std::string& what, std::size_t done, std::size_t all) const;

 private:
  void ClearProgress() const;

  using Clock = std::chrono::steady_clock;

  const bool json_;
  const bool terminal_;               // standard error is one
  const bool coloured_;               // results
  mutable bool progress_ = false;     // a line of progress stands on the terminal
  mutable Clock::time_point spoken_;  // when something was last printed
};

}  // namespace ctl
