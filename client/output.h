// What a command prints: text for people, or one JSON object.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace ctl {

class Output {
 public:
  explicit Output(bool json) : json_(json) {}

  // A result: `text` (lines, without the last line feed; an empty one prints nothing), or `object`
  // as one line of JSON. Goes out at once, so that a reader behind a pipe sees it.
  void Show(const std::string& text, const nlohmann::json& object) const;

  // A fault: "quivordctl: TEXT" on standard error, and with JSON an object with `error` and
  // `status` on standard output.
  void Fault(const std::string& text, int status) const;

 private:
  const bool json_;
};

}  // namespace ctl
