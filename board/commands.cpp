#include "commands.h"

#include <cstdio>
#include <memory>

#include "actions.h"
#include "capture.h"
#include "fleet.h"
#include "run.h"

namespace board_tool {
namespace {

// One subcommand: its name, its description, whole command lines for its help, and what it does
// with the words.
class Commands {
 public:
  Commands(CLI::App& app, int& status) : app_(app), status_(status) {}

  template <typename Action>
  CLI::App* Add(const char* name, const char* description, const char* examples, Action action) {
    CLI::App* const command = app_.add_subcommand(name, description);
    command->footer(std::string("Examples:\n") + examples);
    command->callback([words = words_, &status = status_, action] {
      try {
        action(*words);
      } catch (const Refusal& refusal) {
        std::fprintf(stderr, "quivord-board: %s\n", refusal.what());
        status = refusal.status;
      }
    });
    return command;
  }

  // One that works on an existing board.
  template <typename Action>
  CLI::App* AddOnBoard(const char* name, const char* description, const char* examples,
                       Action action) {
    CLI::App* const command = Add(name, description, examples, action);
    command
        ->add_option("--board", words().folder,
                     "Board folder; else QUIVORD_BOARD, else the default one")
        ->type_name("DIR");
    return command;
  }

  Words& words() { return *words_; }

 private:
  CLI::App& app_;
  int& status_;
  std::shared_ptr<Words> words_ = std::make_shared<Words>();
};

void AddState(CLI::App* command, Words& words) {
  command->add_option("PORT", words.number, "Output port, 0 to 15")->required();
  command->add_option("STATE", words.state, "up or down")
      ->required()
      ->check(CLI::IsMember({"up", "down"}));
}

CLI::Option* AddFolder(CLI::App* command, Words& words) {
  return command->add_option("DIR", words.folder, "Board folder");
}

void AddLifeCommands(Commands& commands, const std::vector<std::string>& daemon_options,
                     int& status) {
  Words& words = commands.words();
  auto* const create =
      commands.Add("create", "Make a board folder",
                   "  quivord-board create /tmp/my-board\n"
                   "  quivord-board create /tmp/my-board slot=3 port.0.cards=8 port.1.cards=8",
                   Create);
  AddFolder(create, words)->required();
  create->add_option("SETTINGS", words.settings, "key=value of board.conf, such as slot=3");
  auto* const run = commands.Add(
      "run", "Run the daemon on a board; options behind -- are the daemon's",
      "  quivord-board run /tmp/my-board\n"
      "  quivord-board run /tmp/my-board -- -debug\n"
      "Starts the daemon again after its reboot or power cut. Ends with its exit status.",
      [&](const Words& w) {
        ChooseBoard(w);
        status = RunDaemon(daemon_options);
      });
  AddFolder(run, words)->required();
  auto* const fleet = commands.Add(
      "fleet", "Run many boards side by side; options behind -- are the daemons'",
      "  quivord-board fleet 4 /tmp/my-boards port.0.cards=8\n"
      "The boards are DIR/01, DIR/02 and so on; 'quivordctl --board DIR --all' asks all.",
      [&](const Words& w) {
        const auto count = Number(w.number, 1, kMostBoards, "COUNT");
        status = RunFleet({static_cast<int>(count), w.folder, w.settings, daemon_options});
      });
  fleet->add_option("COUNT", words.number, "Number of boards, 1 to 99")->required();
  AddFolder(fleet, words)->required();
  fleet->add_option("SETTINGS", words.settings, "key=value of board.conf, for boards it makes");
  AddFolder(commands.AddOnBoard("power-up", "Do what power that comes does: FPGA memory is cleared",
                                "  quivord-board power-up /tmp/my-board", PowerUpBoard),
            words);
}

void AddCapture(Commands& commands, int& status) {
  Words& words = commands.words();
  auto* const capture =
      commands.AddOnBoard("capture", "Write bus traffic as pcapng, until Ctrl-C",
                          "  quivord-board capture bus.pcapng /tmp/my-board\n"
                          "  quivord-board capture - /tmp/my-board | wireshark -k -i -\n"
                          "Taken from the board's trace, whose 'trace' in board.conf has to name "
                          "bus.",
                          [&](const Words& w) {
                            UseBoard(w);
                            status = Capture(w.file, w.once);
                          });
  capture->add_option("FILE", words.file, "File to write, - for standard output")->required();
  AddFolder(capture, words);
  capture->add_flag("--once", words.once, "Write what the trace has already, and end");
}

void AddCellCommands(Commands& commands) {
  Words& words = commands.words();
  auto* const peek = commands.AddOnBoard("peek", "Show FPGA cells",
                                         "  quivord-board peek 0x1DE --board /tmp/my-board", Peek);
  auto* const poke =
      commands.AddOnBoard("poke", "Change FPGA cells, status cells too, as the hardware does",
                          "  quivord-board poke 0x100 0x5A 0x5B --board /tmp/my-board", Poke);
  for (CLI::App* const command : {peek, poke}) {
    command->add_option("--fpga", words.fpga, "FPGA 0 or 1")
        ->type_name("N")
        ->check(CLI::IsMember({0, 1}))
        ->capture_default_str();
    command->add_option("ADDRESS", words.address, "Bus address, as 0x1F or decimal")->required();
  }
  peek->add_option("LENGTH", words.length, "Number of cells")->capture_default_str();
  poke->add_option("BYTES", words.bytes, "Bytes, as 0x5A or decimal")->required();
}

void AddWorldCommands(Commands& commands) {
  Words& words = commands.words();
  auto* const fault = commands.AddOnBoard(
      "fault", "Let the next COUNT accesses of a kind fail; below 0 all, 0 none",
      "  quivord-board fault --list\n"
      "  quivord-board fault flash-write 3 --board /tmp/my-board\n"
      "  quivord-board fault flash-write 0 --board /tmp/my-board",
      SetFault);
  fault->add_flag("--list", words.list, "Name all faults with their counters");
  fault->add_option("NAME", words.name, "Fault, as --list names it");
  fault->add_option("COUNT", words.number, "Number of accesses");
  auto* const lux = commands.AddOnBoard("lux", "Set what the light sensors see",
                                        "  quivord-board lux 800 --board /tmp/my-board\n"
                                        "  quivord-board lux fail --board /tmp/my-board",
                                        SetLux);
  lux->add_option("VALUE", words.number, "Lux, or the word fail")->required();
  AddState(commands.AddOnBoard("link", "Set a port's copper link",
                               "  quivord-board link 3 up --board /tmp/my-board", Link),
           words);
  auto* const fiber =
      commands.AddOnBoard("fiber", "Set a port's link below a fiber",
                          "  quivord-board fiber 1 3 up --board /tmp/my-board", Fiber);
  fiber->add_option("FIBER", words.name, "Fiber, 1 or 2")->required();
  AddState(fiber, words);
  auto* const fiber_status =
      commands.AddOnBoard("fiber-status", "Set the fiber link status byte",
                          "  quivord-board fiber-status 0xA0 --board /tmp/my-board", FiberStatus);
  fiber_status->add_option("BYTE", words.number, "Status, as 0xA0 or decimal")->required();
}

}  // namespace

void AddCommands(CLI::App& app, const std::vector<std::string>& daemon_options, int& status) {
  Commands commands(app, status);
  AddLifeCommands(commands, daemon_options, status);
  AddCapture(commands, status);
  AddCellCommands(commands);
  AddWorldCommands(commands);
}

}  // namespace board_tool
