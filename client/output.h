// What a command prints: text for people, or one JSON object.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace ctl {

class Output {
 public:
  explicit Output(bool json);

  // A result: `text` (lines, without the last line feed; an empty one prints nothing), or `object`
  // as one line of JSON. Goes out at once, so that a reader behind a pipe sees it.
  void Show(const std::string& text, const nlohmann::json& object) const;

  // A fault: "quivordctl: TEXT" on standard error, and with JSON an object with `error` and
  // `status` on standard output.
  void Fault(const std::string& text, int status) const;

  // How far long work has come, on standard error and not with JSON: a step as a line of its own,
  // and what changes in between as one line that is written over, only where somebody looks at a
  // terminal.
  void Step(const std::string& text) const;
  void Progress(const std::string& text) const;

 private:
  void ClearProgress() const;

  const bool json_;
  const bool terminal_;
  mutable bool progress_ = false;  // a line of progress stands on the terminal
};

}  // namespace ctl
