// quivordctl: asks the daemon of a board over its message bus, one command a call.
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "all_boards.h"
#include "commands.h"

namespace {

constexpr char kAbout[] =
    "Talks to quivord over the message bus of a board.\n"
    "Exit status: 0 done, 1 the device refused, 2 wrong use, 3 no daemon or no answer in time.";

struct Declared {
  CLI::App* app;
  ctl::Run run;
};

std::vector<Declared> DeclareAll(CLI::App& app) {
  std::vector<Declared> all;
  for (const ctl::Command* command : ctl::Commands()) {
    CLI::App* sub = app.add_subcommand(command->name, command->summary);
    sub->fallthrough();  // the common options may stand behind the command too
    all.push_back({sub, command->declare(*sub)});
    const std::string examples = std::string("Examples:\n") + command->examples;
    sub->footer(examples);
    for (CLI::App* part : sub->get_subcommands({})) {
      if (part->get_footer().empty()) part->footer(examples);
    }
  }
  return all;
}

// The command as far as the command line has named it: "quivordctl output".
std::string Called(const CLI::App& app) {
  std::string text = app.get_name();
  for (const CLI::App* part = &app; !part->get_subcommands().empty();) {
    part = part->get_subcommands().front();
    text += " " + part->get_name();
  }
  return text;
}

ctl::Exit RunOnOne(const std::vector<Declared>& all, const ctl::OptionWords& words) {
  const ctl::Options options = ctl::Understand(words);
  ctl::Output out(options.json);
  ctl::Context context{options, out};
  for (const Declared& declared : all) {
    if (declared.app->parsed()) return declared.run(context);
  }
  return ctl::Exit::kWrongUse;
}

int Run(const std::vector<Declared>& all, const ctl::OptionWords& words) {
  if (!words.all) return static_cast<int>(RunOnOne(all, words));
  const auto folder = ctl::Understand(words).board;
  const auto boards = ctl::BoardsIn(folder);
  if (boards.empty()) {
    throw CLI::ValidationError("--all", "finds no board in " + folder.string() +
                                            "; 'quivord-board fleet' makes and runs some");
  }
  return ctl::RunOnAll(boards, words.json, [&](const std::filesystem::path& board) {
    ctl::OptionWords on_board = words;
    on_board.board = board;
    return static_cast<int>(RunOnOne(all, on_board));
  });
}

int Ctl(int argc, char** argv) {
  CLI::App app(kAbout, "quivordctl");
  app.require_subcommand(1);
  ctl::OptionWords words;
  ctl::Declare(app, words);
  const std::vector<Declared> all = DeclareAll(app);
  try {
    app.parse(argc, argv);
    return Run(all, words);
  } catch (const CLI::Success& shown) {
    return app.exit(shown);  // help
  } catch (const CLI::ParseError& error) {
    ctl::Output(words.json)
        .Fault(std::string(error.what()) + "; see " + Called(app) + " --help",
               static_cast<int>(ctl::Exit::kWrongUse));
    return static_cast<int>(ctl::Exit::kWrongUse);
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Ctl(argc, argv);
  } catch (const std::exception& fault) {  // out of memory and the like
    std::fprintf(stderr, "quivordctl: %s\n", fault.what());
    return static_cast<int>(ctl::Exit::kNoAnswer);
  }
}
