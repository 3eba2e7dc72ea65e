// The manual pages of the program and of each command, from what --help says, as scdoc's source.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace ctl {

// The page of the program; `version` stands at its foot.
std::string ProgramManual(const CLI::App& root, const std::string& version);

// The page of a command with all of its subcommands: quivordctl-NAME(1). Empty where there is no
// such command.
std::string CommandManual(const CLI::App& root, const std::string& name,
                          const std::string& version);

}  // namespace ctl
