// What may stand next on a command line, for the shells' completion.
#pragma once

#include <CLI/CLI.hpp>
#include <span>
#include <string>
#include <vector>

namespace ctl {

struct Completion {
  struct Word {
    std::string word;
    std::string about;  // a line; may be empty
  };
  enum class Paths { kNone, kFiles, kFolders };

  std::vector<Word> words;
  Paths paths = Paths::kNone;  // of the file system that may stand there too
};

// `words` are those behind the program's name, the last one as far as it is typed; what comes back
// begins with that.
Completion Complete(const CLI::App& root, std::span<const std::string> words);

// A line a word, a tab between it and what is said about it; `:files` or `:folders` where paths
// fit.
std::string CompletionText(const Completion& completion);

}  // namespace ctl
