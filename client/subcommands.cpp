#include "subcommands.h"

#include <string>
#include <utility>
#include <vector>

namespace ctl {

Run DeclareSubcommands(CLI::App& app, std::span<const Command* const> commands) {
  app.require_subcommand(1);
  std::vector<std::pair<const CLI::App*, Run>> all;
  for (const Command* command : commands) {
    CLI::App* sub = app.add_subcommand(command->name, command->summary);
    sub->footer(std::string("Examples:\n") + command->examples);
    sub->fallthrough();
    all.emplace_back(sub, command->declare(*sub));
  }
  return [all](Context& context) {
    for (const auto& [sub, run] : all) {
      if (sub->parsed()) return run(context);
    }
    return Exit::kWrongUse;
  };
}

}  // namespace ctl
