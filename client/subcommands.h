// Commands in the tree, and a command that is a family of commands.
#pragma once

#include <span>

#include "command.h"

namespace ctl {

// What `--help` says behind the options: whole command lines, and remarks behind them.
std::string ExamplesText(const std::string& examples);

// A command of this name below `app`. The common options may stand behind it too.
CLI::App* AddPart(CLI::App& app, const char* name, const char* summary, const char* examples);

// Declares `commands` below `app`. The function that comes back runs the one that was chosen;
// where none was, `alone`, which takes no arguments that it needs, or else the command line is
// wrong.
Run DeclareSubcommands(CLI::App& app, std::span<const Command* const> commands,
                       const Command* alone = nullptr);

}  // namespace ctl
