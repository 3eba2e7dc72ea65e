#include "command_tree.h"

#include "all_boards.h"
#include "commands.h"
#include "quivord/interface_version.h"
#include "subcommands.h"
#include "written_files.h"

namespace ctl {
namespace {

constexpr char kAbout[] =
    "Talks to quivord over the message bus of a board.\n"
    "Exit status: 0 done, 1 the device refused, 2 wrong use, 3 no daemon or no answer in time.";

constexpr char kExamples[] =
    "  quivordctl doctor\n"
    "  quivordctl status\n"
    "  quivordctl --board /tmp/my-board --json wall show\n"
    "'quivordctl COMMAND --help' says more of a command; options of all commands may stand behind "
    "it.";

}  // namespace

const char kProgramVersion[] = QUIVORD_VERSION;

CommandTree::CommandTree() : app_(kAbout, "quivordctl") {
  app_.require_subcommand(1);
  app_.set_version_flag("--version",
                        "quivordctl " + std::string(kProgramVersion) + ", interface " +
                            std::to_string(quivord::kInterfaceVersion),
                        "Print the versions of program and interface");
  app_.footer(ExamplesText(kExamples));
  Declare(app_, words_);
  for (const Command* command : Commands()) {
    CLI::App* const sub = AddPart(app_, command->name, command->summary, command->examples);
    commands_.emplace_back(sub, command->declare(*sub));
  }
}

int CommandTree::Run() const {
  if (!words_.all) return static_cast<int>(RunOnOne(words_));
  if (const std::string file = FileOfAllBoards(); !file.empty()) {
    throw CLI::ValidationError("--all", "would let all boards write " + file +
                                            "; have {board} in its name, which stands for each's");
  }
  const auto folder = Understand(words_).board;
  const auto boards = BoardsIn(folder);
  if (boards.empty()) {
    throw CLI::ValidationError("--all", "finds no board in " + folder.string() +
                                            "; 'quivord-board fleet' makes and runs some");
  }
  return RunOnAll(boards, words_.json, [this](const std::filesystem::path& board) {
    OptionWords on_board = words_;
    on_board.board = board;
    return static_cast<int>(RunOnOne(on_board));
  });
}

Exit CommandTree::RunOnOne(const OptionWords& words) const {
  const Options options = Understand(words);
  NameWrittenFiles(options.board);
  Output out(options.json);
  Context context{options, out, Called()};
  for (const auto& [command, run] : commands_) {
    if (command->parsed()) return run(context);
  }
  return Exit::kWrongUse;
}

std::string CommandTree::Called() const {
  std::string text = app_.get_name();
  for (const CLI::App* part = &app_; !part->get_subcommands().empty();) {
    part = part->get_subcommands().front();
    text += " " + part->get_name();
  }
  return text;
}

}  // namespace ctl
