#include "subcommands.h"

#include <string>
#include <utility>
#include <vector>

namespace ctl {

std::string ExamplesText(const std::string& examples) { return "Examples:\n" + examples; }

CLI::App* AddPart(CLI::App& app, const char* name, const char* summary, const char* examples) {
  CLI::App* const part = app.add_subcommand(name, summary);
  part->fallthrough();
  part->footer(ExamplesText(examples));
  return part;
}

Run DeclareSubcommands(CLI::App& app, std::span<const Command* const> commands,
                       const Command* alone) {
  app.require_subcommand(alone == nullptr ? 1 : 0, 1);
  std::vector<std::pair<const CLI::App*, Run>> all;
  Run otherwise;
  for (const Command* command : commands) {
    CLI::App* const part = AddPart(app, command->name, command->summary, command->examples);
    all.emplace_back(part, command->declare(*part));
    if (command == alone) otherwise = all.back().second;
  }
  return [all, otherwise](Context& context) {
    for (const auto& [part, run] : all) {
      if (part->parsed()) return run(context);
    }
    return otherwise ? otherwise(context) : Exit::kWrongUse;
  };
}

}  // namespace ctl
