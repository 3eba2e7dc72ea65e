#include "manual.h"

#include <cctype>
#include <string_view>

#include "option_words.h"

namespace ctl {
namespace {

bool All(const CLI::App* /*part*/) { return true; }

// Plain text: none of its characters marks anything up.
std::string Plain(std::string_view text) {
  std::string plain;
  for (const char c : text) {
    if (c == '\\' || c == '*' || c == '_' || c == '#' || c == '-') plain += '\\';
    plain += c;
  }
  return plain;
}

std::string Bold(std::string_view text) { return "*" + Plain(text) + "*"; }
std::string Value(std::string_view text) { return "_" + Plain(text) + "_"; }

std::string Literal(const std::string& text) {
  return "```\n" + text + (text.ends_with('\n') ? "" : "\n") + "```\n";
}

std::string Title(const std::string& page, const std::string& version) {
  return page + "(1) \"quivord " + version + "\"\n\n";
}

// A sentence as it follows a page's name: its first letter small.
std::string Small(std::string text) {
  const bool acronym = text.size() > 1 && std::isupper(static_cast<unsigned char>(text[1])) != 0;
  if (!text.empty() && !acronym) {
    text[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
  }
  return text;
}

std::string Entry(const CLI::Option& option) {
  const Described described = Describe(option);
  std::string text = described.positional ? Value(described.name) : Bold(described.name);
  if (!described.positional && !described.value.empty()) text += " " + Value(described.value);
  text += "\n\t" + Plain(option.get_description());
  if (!described.limits.empty()) text += ", " + Plain(described.limits);
  if (!option.get_default_str().empty()) {
    text += " (default: " + Plain(option.get_default_str()) + ")";
  }
  return text + "\n\n";
}

std::string Entries(const CLI::App& app) {
  std::string text;
  for (const CLI::Option* option : app.get_options({})) {
    if (option != app.get_help_ptr()) text += Entry(*option);
  }
  return text;
}

// What may stand behind the name: options in one word, then what has to be given.
std::string Arguments(const CLI::App& app) {
  std::string options;
  std::string positionals;
  for (const CLI::Option* option : app.get_options({})) {
    if (option == app.get_help_ptr()) continue;
    const Described described = Describe(*option);
    if (!described.positional) {
      options = " [" + Value("OPTIONS") + "]";
      continue;
    }
    const std::string name = Value(described.name) + (described.several ? "..." : "");
    positionals += option->get_required() ? " " + name : " [" + name + "]";
  }
  return options + positionals;
}

// Examples, and the remarks behind them, without their heading.
std::string Examples(const CLI::App& app) {
  const std::string footer = app.get_footer();
  return Literal(footer.substr(footer.find('\n') + 1));
}

std::string Called(const CLI::App& app) {
  if (app.get_parent() == nullptr) return app.get_name();
  return Called(*app.get_parent()) + " " + app.get_name();
}

std::string Part(const CLI::App& part) {
  return "## " + Plain(Called(part)) + "\n\n" + Plain(part.get_description()) + ".\n\n" +
         Entries(part) + Examples(part) + "\n";
}

std::string Synopsis(const CLI::App& command) {
  const auto parts = command.get_subcommands(All);
  std::string text;
  if (parts.empty() || command.get_require_subcommand_min() == 0) {
    text += Bold(Called(command)) + (parts.empty() ? Arguments(command) : "") + "++\n";
  }
  for (const CLI::App* part : parts) text += Bold(Called(*part)) + Arguments(*part) + "++\n";
  text.resize(text.size() - 3);  // no break behind the last one
  return text + "\n\n";
}

constexpr char kExitStatus[] = R"(# EXIT STATUS

*0*
	Done.

*1*
	The device refused, or would have.

*2*
	Wrong use: the command line says something that can't be done.

*3*
	No daemon, or no answer in time.

)";

constexpr char kEnvironment[] = R"(# ENVIRONMENT

*QUIVORD\_BOARD*
	The board folder where *\-\-board* isn't given.

*NO\_COLOR*
	Not empty: no colours. There are none where the output is no terminal either.

)";

}  // namespace

std::string ProgramManual(const CLI::App& root, const std::string& version) {
  std::string text = Title("quivordctl", version) +
                     "# NAME\n\nquivordctl - talk to the quivord control daemon\n\n"
                     "# SYNOPSIS\n\n" +
                     Bold("quivordctl") + " [" + Value("OPTIONS") + "] " + Value("COMMAND") +
                     " ...\n\n# DESCRIPTION\n\n" +
                     "Asks the daemon of a board over its message bus, one command a call. Options "
                     "of all commands may stand before or behind the command.\n\n"
                     "# COMMANDS\n\n";
  for (const CLI::App* command : root.get_subcommands(All)) {
    text += Bold(command->get_name()) + "\n\t" + Plain(command->get_description()) + "; see *" +
            Plain("quivordctl-" + command->get_name()) + "*(1).\n\n";
  }
  return text + "# OPTIONS\n\n" + Entries(root) + kExitStatus + kEnvironment + "# EXAMPLES\n\n" +
         Examples(root) +
         "\n# SEE ALSO\n\n*quivord*(8), *quivord\\-board*(1), *quivord\\-wall*(1)\n";
}

std::string CommandManual(const CLI::App& root, const std::string& name,
                          const std::string& version) {
  const auto found =
      root.get_subcommands([&name](const CLI::App* part) { return part->get_name() == name; });
  if (found.empty()) return "";
  const CLI::App& command = *found.front();
  const std::string page = "quivordctl-" + name;
  std::string text = Title(page, version) + "# NAME\n\n" + page + " - " +
                     Plain(Small(command.get_description())) + "\n\n# SYNOPSIS\n\n" +
                     Synopsis(command);
  const std::string entries = Entries(command);
  if (!entries.empty()) text += "# OPTIONS\n\n" + entries;
  text += "# EXAMPLES\n\n" + Examples(command) + "\n";
  if (const auto parts = command.get_subcommands(All); !parts.empty()) {
    text += "# COMMANDS\n\n";
    for (const CLI::App* part : parts) text += Part(*part);
  }
  return text + kExitStatus + "# SEE ALSO\n\n*quivordctl*(1)\n";
}

}  // namespace ctl
