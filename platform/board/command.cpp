#include "board/command.h"

#include <algorithm>
#include <cctype>

#include "board/standins.h"

namespace board {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPcCat = "/bin/cat";
constexpr std::string_view kPcShell = "/bin/sh";
constexpr std::string_view kPcProcesses = "/proc/";

constexpr std::string_view kBetweenWords = " \t\n;|&<>()`";

bool LiesIn(std::string_view path, std::string_view folder) {
  return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

std::string Quoted(std::string_view text) {
  std::string quoted = "'";
  for (const char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

// One word of a command: as it stands there, and what the shell makes of its quotes.
struct Word {
  std::string_view raw;
  std::string text;
};

// Takes the word at the front of `rest`, which starts with one.
Word TakeWord(std::string_view& rest) {
  Word word;
  char quote = 0;
  std::size_t at = 0;
  for (; at < rest.size(); ++at) {
    const char c = rest[at];
    if (quote == 0 && kBetweenWords.find(c) != kBetweenWords.npos) break;
    if (c == quote) {
      quote = 0;
    } else if (quote == 0 && (c == '\'' || c == '"')) {
      quote = c;
    } else if (c == '\\' && quote != '\'' && at + 1 < rest.size()) {
      word.text += rest[++at];
    } else {
      word.text += c;
    }
  }
  word.raw = rest.substr(0, at);
  rest.remove_prefix(at);
  return word;
}

bool IsNameCharacter(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '-' || c == '.';
}

// Whether `name` stands in `text` by itself; behind a slash it is part of a path, not a program
// that the shell would look for.
bool Mentions(std::string_view text, std::string_view name) {
  for (auto at = text.find(name); at != text.npos; at = text.find(name, at + 1)) {
    const auto end = at + name.size();
    const bool starts = at == 0 || (!IsNameCharacter(text[at - 1]) && text[at - 1] != '/');
    if (starts && (end == text.size() || !IsNameCharacter(text[end]))) return true;
  }
  return false;
}

void NoteStandIns(std::string_view word, std::string_view inner, Command& command) {
  for (const std::string_view stand_in : kStandIns) {
    const auto name = stand_in.substr(stand_in.rfind('/') + 1);
    if (Mentions(word, name) || inner == stand_in) command.stand_ins.push_back(stand_in);
  }
}

void AddPath(const std::string& path, const fs::path& folder, Command& command) {
  const std::string place = InFolder(path, folder);
  const bool stays = place == path && !LiesIn(path, folder.native());
  if (stays) {  // what is the PC's: only this one may be run
    command.strays |= path != kPcCat;
    command.run += Quoted(path);
    command.shown += path;
    return;
  }
  const std::string normal = fs::path(place).lexically_normal();
  command.strays |= !LiesIn(normal, folder.native());
  command.run += Quoted(place);
  const auto shown = std::string_view(place).substr(folder.native().size());
  command.shown += shown.empty() ? "/" : shown;
  if (!command.strays) NoteStandIns({}, normal.substr(folder.native().size() + 1), command);
}

// `text` without the folder, wherever it stands; a longer name that begins like it is another path.
std::string Without(const std::string& folder, std::string text) {
  std::size_t at = 0;
  while ((at = text.find(folder, at)) != text.npos) {
    const auto end = at + folder.size();
    if (end < text.size() && IsNameCharacter(text[end])) {
      at = end;
    } else {
      text.erase(at, folder.size());
    }
  }
  return text;
}

}  // namespace

std::string InFolder(std::string_view path, const fs::path& folder) {
  if (!path.starts_with('/') || path == kPcCat || path == kPcShell ||
      path.starts_with(kPcProcesses) || LiesIn(path, folder.native())) {
    return std::string(path);
  }
  return folder.native() + std::string(path);
}

Command BoardCommand(std::string_view text, const fs::path& folder) {
  Command command;
  while (!text.empty()) {
    if (kBetweenWords.find(text.front()) != kBetweenWords.npos) {
      command.run += text.front();
      command.shown += text.front();
      text.remove_prefix(1);
      continue;
    }
    const Word word = TakeWord(text);
    if (word.text.starts_with('/')) {
      AddPath(word.text, folder, command);
      continue;
    }
    NoteStandIns(word.text, {}, command);
    command.run += word.raw;
    command.shown += word.raw;
  }
  command.shown = Without(folder.native(), std::move(command.shown));
  return command;
}

}  // namespace board
