#include "actions.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "board/board.h"
#include "board/cards.h"
#include "board/cells.h"
#include "board/faults.h"
#include "board/files.h"
#include "board/folder.h"
#include "board/power.h"
#include "board/stores.h"
#include "board/text.h"
#include "file_fault.h"

namespace board_tool {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kFiberStatusCell = 0x1D7;

int Count(const std::string& text) {
  constexpr std::uint32_t kMost = 0x7FFFFFFF;
  const bool negative = text.starts_with('-');
  const auto count = static_cast<int>(Number(text.substr(negative ? 1 : 0), 0, kMost, "count"));
  return negative ? -count : count;
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

int Port(const Words& words) { return static_cast<int>(Number(words.number, 0, 15, "port")); }

}  // namespace

std::uint32_t Number(const std::string& text, std::uint32_t least, std::uint32_t most,
                     const char* what) {
  if (const auto number = board::NumberBetween(text, least, most)) return *number;
  throw Refusal(kWrongUse, std::string(what) + " '" + text + "' is no number from " +
                               std::to_string(least) + " to " + std::to_string(most));
}

void ChooseBoard(const Words& words) {
  if (!words.folder.empty()) setenv("QUIVORD_BOARD", words.folder.c_str(), 1);
}

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
    throw Refusal(kFailed, quivord::CannotWrite(file, fault ? fault.value() : errno));
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
  const auto length = static_cast<std::uint32_t>(cells.size());
  if (!board::ReserveCells(words.fpga, address, length)) {
    throw Refusal(kFailed, "no room on the disk of " + board::Folder().string());
  }
  board::StoreCells(words.fpga, address, length, cells.data());
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
  const fs::path file = board::Folder() / "sensors/lux";
  if (!board::ReplaceWhole(file, words.number + "\n")) {
    throw Refusal(kFailed, quivord::CannotWrite(file, errno));
  }
}

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

}  // namespace board_tool
