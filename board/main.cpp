// The board from outside: makes board folders, runs the daemon on them, changes what the daemon
// meets there. Under the name of an outside program of the device it is that program.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "commands.h"
#include "standins.h"
#include "status.h"

namespace {

using Arguments = std::vector<std::string>;

constexpr const char* kStatuses =
    "Exit status: 0 done, 1 failed, 2 wrong use, 3 unknown fault or key; of run, the daemon's.";

bool HasCommand(const CLI::App& app, const std::string& name) {
  const auto commands = app.get_subcommands([](const CLI::App*) { return true; });
  return std::any_of(commands.begin(), commands.end(),
                     [&](const CLI::App* command) { return command->get_name() == name; });
}

// CLI11 wants the arguments in reverse order.
int RunTool(Arguments arguments, const Arguments& daemon_options) {
  int status = board_tool::kDone;
  CLI::App app("Makes and drives simulated boards for quivord.", "quivord-board");
  app.set_version_flag("--version", "quivord-board " QUIVORD_VERSION, "Print the version");
  app.require_subcommand(1);
  app.footer(kStatuses);
  board_tool::AddCommands(app, daemon_options, status);
  if (!arguments.empty() && !arguments[0].starts_with('-') && !HasCommand(app, arguments[0])) {
    std::fprintf(stderr, "quivord-board: no command is called '%s'; see 'quivord-board --help'\n",
                 arguments[0].c_str());
    return board_tool::kWrongUse;
  }
  std::reverse(arguments.begin(), arguments.end());
  try {
    app.parse(arguments);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app.exit(error);
    std::fprintf(stderr, "quivord-board: %s; see 'quivord-board --help'\n", error.what());
    return board_tool::kWrongUse;
  }
  return status;
}

int Run(std::string_view own_path, Arguments arguments) {
  const auto own_name = own_path.substr(own_path.rfind('/') + 1);
  if (const auto status = board_tool::RunStandIn(own_name, arguments)) return *status;
  const auto dashes = std::find(arguments.begin(), arguments.end(), "--");
  Arguments daemon_options;
  if (dashes != arguments.end()) {
    daemon_options.assign(dashes + 1, arguments.end());
    arguments.erase(dashes, arguments.end());
  }
  return RunTool(std::move(arguments), daemon_options);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc > 0 ? argv[0] : "", {argv + std::min(argc, 1), argv + argc});
  } catch (const std::exception& error) {  // a file that another process has taken away, say
    std::fprintf(stderr, "quivord-board: %s\n", error.what());
    return board_tool::kFailed;
  }
}
