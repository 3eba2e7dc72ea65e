// The command line as a tree: the common options, and all commands with theirs.
#pragma once

#include <utility>
#include <vector>

#include "command.h"

namespace ctl {

extern const char kProgramVersion[];

class CommandTree {
 public:
  CommandTree();

  CLI::App& app() { return app_; }
  const OptionWords& words() const { return words_; }

  // Runs the command that was parsed, on one board or on all. Returns the exit status; throws as
  // `Understand` does.
  int Run() const;

  // The command as far as the command line has named it: "quivordctl output".
  std::string Called() const;

 private:
  Exit RunOnOne(const OptionWords& words) const;

  CLI::App app_;
  OptionWords words_;
  std::vector<std::pair<const CLI::App*, ctl::Run>> commands_;
};

}  // namespace ctl
