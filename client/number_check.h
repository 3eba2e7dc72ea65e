// The numbers that an option takes.
#pragma once

#include <CLI/CLI.hpp>
#include <cstdio>
#include <string>

namespace ctl {

// A bound as texts have it, without an exponent.
template <class Number>
std::string BoundText(Number bound) {
  char text[32];
  std::snprintf(text, sizeof text, "%.10g", static_cast<double>(bound));
  return text;
}

// Checks that an option is a number from `least` to `most`, whole where these are. The help says
// the range in brackets.
template <class Number>
CLI::Validator NumberFrom(Number least, Number most) {
  const std::string range = BoundText(least) + " to " + BoundText(most);
  const auto check = [=](const std::string& word) -> std::string {
    Number number{};
    const bool understood = CLI::detail::lexical_cast(word, number);
    if (understood && number >= least && number <= most) return "";
    return "a number from " + range + " is needed";
  };
  return CLI::Validator(check, "[" + range + "]");
}

}  // namespace ctl
