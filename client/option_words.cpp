#include "option_words.h"

#include <map>
#include <sstream>

namespace ctl {
namespace {

std::map<const CLI::Option*, std::vector<std::string>>& Offers() {
  static std::map<const CLI::Option*, std::vector<std::string>> offers;
  return offers;
}

// The text between `begin` and `end`; empty where they aren't there.
std::string Between(const std::string& text, char begin, char end) {
  const std::size_t first = text.find(begin);
  const std::size_t last = text.find(end, first == text.npos ? 0 : first);
  if (first == text.npos || last == text.npos) return "";
  return text.substr(first + 1, last - first - 1);
}

std::vector<std::string> Split(const std::string& text) {
  std::vector<std::string> words;
  std::istringstream stream(text);
  for (std::string word; std::getline(stream, word, ',');) words.push_back(word);
  return words;
}

std::string Name(const CLI::Option& option) {
  if (option.get_positional()) return option.get_name(true);
  const auto& names = option.get_lnames();
  return names.empty() ? "-" + option.get_snames().front() : "--" + names.front();
}

}  // namespace

void Offer(const CLI::Option* option, std::vector<std::string> words) {
  Offers()[option] = std::move(words);
}

Described Describe(const CLI::Option& option) {
  Described words;
  words.name = Name(option);
  words.positional = option.get_positional();
  words.several = option.get_items_expected_max() > 1;
  if (option.get_type_size_max() == 0) return words;  // a flag
  // "N:[1 to 255]" stands for a range, "STORE:{live,tmp}" for a choice.
  const std::string type = option.get_type_name();
  words.value = words.positional ? words.name : type.substr(0, type.find(':'));
  words.choices = Split(Between(type, '{', '}'));
  words.limits = Between(type, '[', ']');
  if (const auto offered = Offers().find(&option); offered != Offers().end()) {
    words.choices = offered->second;
  }
  return words;
}

}  // namespace ctl
