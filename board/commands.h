// The subcommands of the board program.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace board_tool {

// Adds all subcommands to `app`. The one that the command line names runs within the parse and puts
// its exit status into `status`. `daemon_options` is what stood behind "--".
void AddCommands(CLI::App& app, const std::vector<std::string>& daemon_options, int& status);

}  // namespace board_tool
