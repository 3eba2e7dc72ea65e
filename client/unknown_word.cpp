#include "unknown_word.h"

#include <algorithm>
#include <numeric>
#include <string_view>
#include <vector>

namespace ctl {
namespace {

using Names = std::vector<std::string>;

constexpr std::size_t kMostEdits = 2;  // of a typo; what needs more is another word

// How many letters to insert, remove or change to make one of the other.
std::size_t Edits(std::string_view one, std::string_view other) {
  std::vector<std::size_t> row(other.size() + 1);
  std::iota(row.begin(), row.end(), 0);
  for (std::size_t i = 0; i < one.size(); ++i) {
    std::size_t diagonal = row[0]++;
    for (std::size_t j = 0; j < other.size(); ++j) {
      const std::size_t changed = diagonal + (one[i] == other[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({changed, diagonal + 1, row[j] + 1});
    }
  }
  return row.back();
}

std::string Closest(const std::string& word, const Names& names) {
  std::size_t fewest = std::min(kMostEdits + 1, word.size());
  std::string closest;
  for (const std::string& name : names) {
    const std::size_t edits = Edits(word, name);
    if (edits >= fewest) continue;
    fewest = edits;
    closest = name;
  }
  return closest;
}

// From the program down to the last command that was understood.
std::vector<const CLI::App*> Understood(const CLI::App& app) {
  std::vector<const CLI::App*> parts = {&app};
  while (!parts.back()->get_subcommands().empty()) {
    parts.push_back(parts.back()->get_subcommands().front());
  }
  return parts;
}

Names CommandNames(const CLI::App& app) {
  Names names;
  for (const CLI::App* part : app.get_subcommands([](const CLI::App*) { return true; })) {
    names.push_back(part->get_name());
  }
  return names;
}

Names OptionNames(const std::vector<const CLI::App*>& parts) {
  Names names;
  for (const CLI::App* part : parts) {
    for (const CLI::Option* option : part->get_options()) {
      for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    }
  }
  return names;
}

}  // namespace

std::string UnknownWord(const CLI::App& app) {
  const Names words = app.remaining(true);
  if (words.empty()) return "";
  const auto parts = Understood(app);
  const bool is_option = words[0].starts_with('-');
  const Names names = is_option ? OptionNames(parts) : CommandNames(*parts.back());
  if (names.empty()) return "";  // a word too many, of a command that has no parts
  const std::string closest = Closest(words[0], names);
  return std::string("no ") + (is_option ? "option" : "command") + " is called '" + words[0] + "'" +
         (closest.empty() ? "" : ", but one is called '" + closest + "'");
}

}  // namespace ctl
