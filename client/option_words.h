// What an option or a positional takes, in words: for completion and for the manual.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace ctl {

// Names words that `option` may take besides others, such as names from a table.
void Offer(const CLI::Option* option, std::vector<std::string> words);

// The names of a table's rows.
template <class Rows>
std::vector<std::string> NamesOf(const Rows& rows) {
  std::vector<std::string> names;
  for (const auto& row : rows) names.emplace_back(std::string_view(row.name));
  return names;
}

struct Described {
  std::string name;                  // "--rows", or "FILE" of a positional
  std::string value;                 // what stands for its value: "N"; empty for a flag
  std::string limits;                // "1 to 255"; may be empty
  std::vector<std::string> choices;  // all that it takes, or what was offered
  bool positional = false;
  bool several = false;  // takes more than one word
};
Described Describe(const CLI::Option& option);

}  // namespace ctl
