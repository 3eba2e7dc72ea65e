#include "commands.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>

#include "board/board.h"
#include "board/cards.h"
#include "board/cells.h"
#include "board/faults.h"
#include "board/files.h"
#include "board/folder.h"
#include "board/power.h"
#include "board/stores.h"
#include "board/text.h"
#include "capture.h"
#include "fleet.h"
#include "run.h"
#include "status.h"

namespace board_tool {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kFiberStatusCell = 0x1D7;

// A refusal on its way to the end of the program.
struct Refusal : std::runtime_error {
  Refusal(Status refusal_status, const std::string& reason)
      : std::runtime_error(reason), status(refusal_status) {}
  Status status;
};

// What the command line said; each subcommand fills and reads its own part.
struct Words {
  std::string folder;  // --board, or the positional DIR
  std::vector<std::string> settings;
  int fpga = 1;
  std::string address, length = "1", name, number, state;
  std::vector<std::string> bytes;
  bool list = false;
  std::string file;
  bool once = false;
};

std::uint32_t Number(const std::string& text, std::uint32_t least, std::uint32_t most,
                     const char* what) {
  if (const auto number = board::NumberBetween(text, least, most)) return *number;
  throw Refusal(kWrongUse, std::string(what) + " '" + text + "' is no number from " +
                               std::to_string(least) + " to " + std::to_string(most));
}

int Count(const std::string& text) {
  constexpr std::uint32_t kMost = 0x7FFFFFFF;
  const bool negative = text.starts_with('-');
  const auto count = static_cast<int>(Number(text.substr(negative ? 1 : 0), 0, kMost, "count"));
  return negative ? -count : count;
}

void ChooseBoard(const Words& words) {
  if (!words.folder.empty()) setenv("QUIVORD_BOARD", words.folder.c_str(), 1);
}

// The board that the command works on; a board is made by `create` and `run`, not by a slip.
void UseBoard(const Words& words) {
  ChooseBoard(words);
  const auto folder = board::ChooseFolder();
  if (fs::is_directory(folder)) return;
  throw Refusal(kFailed, "no board at " + folder.string() +
                             "; make one with 'quivord-board create " + folder.string() +
                             "' or name another by --board");
}

void Create(const Words& words) {
  ChooseBoard(words);
  const auto file = board::ChooseFolder() / "board.conf";
  if (fs::exists(file)) throw Refusal(kFailed, file.string() + " exists already; edit that file");
  std::string text = board::DefaultSettingsText();
  board::Settings settings;
  for (const std::string& setting : words.settings) {
    std::string_view value = setting;
    const auto key = board::Trim(board::TakeUntil(value, '='));
    const auto result = board::ApplySetting(key, board::Trim(value), settings);
    using Kind = board::SettingResult::Kind;
    if (result.kind == Kind::kUnknownKey) {
      throw Refusal(kUnknownName, result.reason + "; the keys stand in a new board's board.conf");
    }
    if (result.kind == Kind::kBadValue || setting.find_first_of("#\n") != setting.npos) {
      throw Refusal(kWrongUse,
                    "'" + setting +
                        "': " + (result.reason.empty() ? "no # and no line feed" : result.reason));
    }
    text.append(key).append(" = ").append(board::Trim(value)).append("\n");
  }
  std::error_code fault;
  fs::create_directories(file.parent_path(), fault);
  if (fault || !board::ReplaceWhole(file, text)) {
    throw Refusal(kFailed, "cannot write " + file.string());
  }
  board::CreateStores();
  board::CreateCards();
  std::printf("A new board lies in %s\n", board::Folder().c_str());
}

void Peek(const Words& words) {
  constexpr std::uint32_t kRow = 16;
  UseBoard(words);
  const auto address = Number(words.address, 0, 0xFFFFFFFF, "address");
  const auto length = Number(words.length, 1, board::kCellCount, "length");
  std::vector<std::uint8_t> cells(length);
  board::LoadCells(words.fpga, address, length, cells.data());
  for (std::uint32_t i = 0; i < length; ++i) {
    if (i % kRow == 0) std::printf("0x%08x ", address + i);
    std::printf(" %02x%s", cells[i], i % kRow == kRow - 1 || i + 1 == length ? "\n" : "");
  }
}

void Poke(const Words& words) {
  UseBoard(words);
  const auto address = Number(words.address, 0, 0xFFFFFFFF, "address");
  std::vector<std::uint8_t> cells;
  for (const std::string& byte : words.bytes) {
    cells.push_back(static_cast<std::uint8_t>(Number(byte, 0, 255, "byte")));
  }
  board::StoreCells(words.fpga, address, static_cast<std::uint32_t>(cells.size()), cells.data());
}

void ListFaults() {
  const bool has_board = fs::is_directory(board::ChooseFolder());
  for (const board::FaultRow& row : board::kFaultTable) {
    const std::string count =
        has_board ? std::to_string(board::FaultCount(row.fault)) : std::string("-");
    std::printf("%-12.*s %6s  %.*s\n", static_cast<int>(row.name.size()), row.name.data(),
                count.c_str(), static_cast<int>(row.effect.size()), row.effect.data());
  }
}

void SetFault(const Words& words) {
  ChooseBoard(words);
  if (words.list) return ListFaults();
  if (words.number.empty()) throw Refusal(kWrongUse, "a fault's NAME and COUNT are needed");
  const auto fault = board::FaultByName(words.name);
  if (!fault) {
    throw Refusal(kUnknownName, "no fault is called '" + words.name +
                                    "'; 'quivord-board fault --list' names them");
  }
  const int count = Count(words.number);
  UseBoard(words);
  board::SetFaultCount(*fault, count);
}

void SetLux(const Words& words) {
  UseBoard(words);
  if (words.number != "fail") Number(words.number, 0, 0xFFFFFFFF, "lux");
  if (!board::ReplaceWhole(board::Folder() / "sensors/lux", words.number + "\n")) {
    throw Refusal(kFailed, "cannot write sensors/lux of the board");
  }
}

int Port(const Words& words) { return static_cast<int>(Number(words.number, 0, 15, "port")); }

void Link(const Words& words) {
  UseBoard(words);
  board::SetLink(Port(words), words.state == "up");
}

void Fiber(const Words& words) {
  UseBoard(words);
  board::SetFiberLink(static_cast<int>(Number(words.name, 1, 2, "fiber")), Port(words),
                      words.state == "up");
}

void FiberStatus(const Words& words) {
  UseBoard(words);
  const auto status = static_cast<std::uint8_t>(Number(words.number, 0, 255, "status"));
  board::StoreCells(1, kFiberStatusCell, 1, &status);
}

void PowerUpBoard(const Words& words) {
  UseBoard(words);
  board::PowerUp();
}

// One subcommand: its name, its description, and what it does with the words.
class Commands {
 public:
  Commands(CLI::App& app, int& status) : app_(app), status_(status) {}

  template <typename Action>
  CLI::App* Add(const char* name, const char* description, Action action) {
    CLI::App* const command = app_.add_subcommand(name, description);
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
  CLI::App* AddOnBoard(const char* name, const char* description, Action action) {
    CLI::App* const command = Add(name, description, action);
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

void AddLifeCommands(Commands& commands, const std::vector<std::string>& daemon_options,
                     int& status) {
  Words& words = commands.words();
  const auto add_folder = [&](CLI::App* command) {
    return command->add_option("DIR", words.folder, "Board folder");
  };
  auto* const create = commands.Add("create", "Make a board folder", Create);
  add_folder(create)->required();
  create->add_option("SETTINGS", words.settings, "key=value of board.conf, such as slot=3");
  auto* const run = commands.Add(
      "run", "Run the daemon on a board; options behind -- are the daemon's", [&](const Words& w) {
        ChooseBoard(w);
        status = RunDaemon(daemon_options);
      });
  add_folder(run)->required();
  run->footer("Starts the daemon again after its reboot or power cut. Ends with its exit status.");
  auto* const fleet = commands.Add(
      "fleet", "Run many boards side by side; options behind -- are the daemons'",
      [&](const Words& w) {
        const auto count = Number(w.number, 1, kMostBoards, "COUNT");
        status = RunFleet({static_cast<int>(count), w.folder, w.settings, daemon_options});
      });
  fleet->add_option("COUNT", words.number, "Number of boards, 1 to 99")->required();
  add_folder(fleet)->required();
  fleet->add_option("SETTINGS", words.settings, "key=value of board.conf, for boards it makes");
  fleet->footer(
      "The boards are DIR/01, DIR/02 and so on; 'quivordctl --board DIR --all' asks all.");
  add_folder(commands.Add("power-up", "Do what power that comes does: FPGA memory is cleared",
                          PowerUpBoard));
}

void AddCapture(Commands& commands, int& status) {
  Words& words = commands.words();
  auto* const capture =
      commands.Add("capture", "Write bus traffic as pcapng, until Ctrl-C", [&](const Words& w) {
        UseBoard(w);
        status = Capture(w.file, w.once);
      });
  capture->add_option("FILE", words.file, "File to write, - for standard output")->required();
  capture->add_option("DIR", words.folder, "Board folder");
  capture->add_flag("--once", words.once, "Write what the trace has already, and end");
  capture->footer("Taken from the board's trace, whose 'trace' in board.conf has to name bus.");
}

void AddCellCommands(Commands& commands) {
  Words& words = commands.words();
  auto* const peek = commands.AddOnBoard("peek", "Show FPGA cells", Peek);
  auto* const poke = commands.AddOnBoard(
      "poke", "Change FPGA cells, status cells too, as the hardware does", Poke);
  for (CLI::App* const command : {peek, poke}) {
    command->add_option("--fpga", words.fpga, "FPGA 0 or 1")
        ->check(CLI::Range(0, 1))
        ->capture_default_str();
    command->add_option("ADDRESS", words.address, "Bus address, as 0x1F or decimal")->required();
  }
  peek->add_option("LENGTH", words.length, "Number of cells")->capture_default_str();
  poke->add_option("BYTES", words.bytes, "Bytes, as 0x5A or decimal")->required();
}

void AddWorldCommands(Commands& commands) {
  Words& words = commands.words();
  auto* const fault = commands.AddOnBoard(
      "fault", "Let the next COUNT accesses of a kind fail; below 0 all, 0 none", SetFault);
  fault->add_flag("--list", words.list, "Name all faults with their counters");
  fault->add_option("NAME", words.name, "Fault, as --list names it");
  fault->add_option("COUNT", words.number, "Number of accesses");
  auto* const lux = commands.AddOnBoard("lux", "Set what the light sensors see", SetLux);
  lux->add_option("VALUE", words.number, "Lux, or the word fail")->required();
  AddState(commands.AddOnBoard("link", "Set a port's copper link", Link), words);
  auto* const fiber = commands.AddOnBoard("fiber", "Set a port's link below a fiber", Fiber);
  fiber->add_option("FIBER", words.name, "Fiber, 1 or 2")->required();
  AddState(fiber, words);
  auto* const fiber_status =
      commands.AddOnBoard("fiber-status", "Set the fiber link status byte", FiberStatus);
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
