#include "hidden.h"

#include <cstdio>

#include "complete.h"
#include "manual.h"

namespace ctl {
namespace {

std::string Commands(const CLI::App& app, const std::string& before) {
  std::string text;
  for (const CLI::App* part : app.get_subcommands([](const CLI::App*) { return true; })) {
    const std::string below = Commands(*part, before + part->get_name() + " ");
    text += below.empty() ? before + part->get_name() + "\n" : below;
  }
  return text;
}

Exit Print(const std::string& text) {
  std::fputs(text.c_str(), stdout);
  return Exit::kDone;
}

}  // namespace

std::optional<Exit> RunHidden(CommandTree& tree, std::span<const std::string> words) {
  if (words.empty()) return std::nullopt;
  const CLI::App& app = tree.app();
  if (words[0] == "complete") {
    std::fputs(CompletionText(Complete(app, words.subspan(1))).c_str(), stdout);
    return Exit::kDone;
  }
  if (words[0] == "commands") return Print(Commands(app, ""));
  if (words[0] != "manual") return std::nullopt;
  if (words.size() < 2) return Print(ProgramManual(app, kProgramVersion));
  const std::string page = CommandManual(app, words[1], kProgramVersion);
  if (!page.empty()) return Print(page);
  Output(false).Fault("no command is called '" + words[1] + "'; see quivordctl --help",
                      static_cast<int>(Exit::kWrongUse));
  return Exit::kWrongUse;
}

}  // namespace ctl
