#include "complete.h"

#include <algorithm>
#include <string_view>

#include "option_words.h"

namespace ctl {
namespace {

using Words = std::span<const std::string>;

const CLI::App* PartOf(const CLI::App& app, const std::string& name) {
  const auto parts =
      app.get_subcommands([&name](const CLI::App* part) { return part->get_name() == name; });
  return parts.empty() ? nullptr : parts.front();
}

// The options that may stand behind `app`: its own and those of what is above it.
std::vector<const CLI::Option*> OptionsFrom(const CLI::App& app) {
  std::vector<const CLI::Option*> all;
  for (const CLI::App* part = &app; part != nullptr; part = part->get_parent()) {
    for (const CLI::Option* option : part->get_options({})) {
      const bool again = option == part->get_help_ptr() && part != &app;
      if (!option->get_positional() && !again) all.push_back(option);
    }
  }
  return all;
}

// How far a command line has come.
struct Place {
  const CLI::App* app;
  const CLI::Option* option = nullptr;  // whose value comes next
  std::size_t positionals = 0;          // that have been given to `app`
};

void Advance(Place& place, const std::string& word) {
  if (place.option != nullptr) {
    place.option = nullptr;
  } else if (word.starts_with('-')) {
    for (const CLI::Option* option : OptionsFrom(*place.app)) {
      if (option->check_name(word) && option->get_type_size_max() != 0) place.option = option;
    }
  } else if (const CLI::App* part = PartOf(*place.app, word); part != nullptr) {
    place = {part};
  } else {
    ++place.positionals;
  }
}

// What comes next where no option waits for its value; null where nothing does.
const CLI::Option* Positional(const Place& place) {
  std::vector<const CLI::Option*> all =
      place.app->get_options([](const CLI::Option* option) { return option->get_positional(); });
  if (all.empty()) return nullptr;
  if (place.positionals < all.size()) return all[place.positionals];
  return Describe(*all.back()).several ? all.back() : nullptr;
}

void AddValues(const CLI::Option& option, Completion& completion) {
  const Described described = Describe(option);
  for (const std::string& choice : described.choices) completion.words.push_back({choice, ""});
  if (described.value.starts_with("FILE")) completion.paths = Completion::Paths::kFiles;
  if (described.value == "DIR") completion.paths = Completion::Paths::kFolders;
}

void AddOptions(const CLI::App& app, Completion& completion) {
  for (const CLI::Option* option : OptionsFrom(app)) {
    completion.words.push_back({Describe(*option).name, option->get_description()});
  }
}

void AddParts(const CLI::App& app, Completion& completion) {
  for (const CLI::App* part : app.get_subcommands([](const CLI::App*) { return true; })) {
    completion.words.push_back({part->get_name(), part->get_description()});
  }
}

}  // namespace

Completion Complete(const CLI::App& root, Words words) {
  const std::string typed = words.empty() ? "" : words.back();
  Place place{&root};
  for (std::size_t i = 0; i + 1 < words.size(); ++i) Advance(place, words[i]);
  Completion completion;
  if (place.option != nullptr) {
    AddValues(*place.option, completion);
  } else if (typed.starts_with('-')) {
    AddOptions(*place.app, completion);
  } else {
    if (place.positionals == 0) AddParts(*place.app, completion);
    if (const CLI::Option* next = Positional(place)) AddValues(*next, completion);
  }
  std::erase_if(completion.words,
                [&typed](const Completion::Word& word) { return !word.word.starts_with(typed); });
  return completion;
}

std::string CompletionText(const Completion& completion) {
  std::string text;
  for (const auto& [word, about] : completion.words) {
    std::string line = about;
    std::ranges::replace(line, '\n', ' ');
    text += word + "\t" + line + "\n";
  }
  if (completion.paths == Completion::Paths::kFiles) text += ":files\n";
  if (completion.paths == Completion::Paths::kFolders) text += ":folders\n";
  return text;
}

}  // namespace ctl
