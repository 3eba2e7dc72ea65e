#include "board/folder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <system_error>

#include "board/board.h"
#include "board/cells.h"
#include "board/faults.h"
#include "board/files.h"
#include "board/inputs.h"
#include "board/standins.h"

namespace board {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongestSocketPath = 107;  // sun_path without its closing zero

constexpr const char* kFolders[] = {
    "run", "var/run",        "fpga", "sys/class/fpga",          "etc/init.d", "usr/zeph/etc/envcfg",
    "bin", "usr/brm100/bin", "root", "usr/zeph/etc/owd/cabCfg", "inputs",     "sensors",
};
// What lands here is lost where there is no such folder; the board works all the same.
constexpr const char* kSpareFolders[] = {"log", "tmp/quivord"};

const char* NonEmpty(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr && *value != '\0' ? value : nullptr;
}

void MakeFolder(const fs::path& folder) {
  std::error_code fault;
  fs::create_directories(folder, fault);
  if (!fs::is_directory(folder)) {
    Fail("cannot make the folder " + folder.string() + ": " +
         (fault ? fault.message() : std::string("something else has its name")));
  }
}

void MakeSpareFolder(const fs::path& folder) {
  std::error_code fault;
  fs::create_directories(folder, fault);
  if (fs::is_directory(folder)) return;
  std::fprintf(stderr, "board: cannot make the folder %s: files for it are lost\n", folder.c_str());
}

// The board folder itself, for its owner only: whoever writes into it runs what the daemon runs.
void MakeBoardFolder(const fs::path& folder) {
  MakeFolder(folder.parent_path());
  if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) {
    Fail("cannot make the board folder " + folder.string() + ": " + std::strerror(errno));
  }
  MakeFolder(folder);
}

Settings ReadSettings(const fs::path& file) {
  CreateText(file, DefaultSettingsText());
  const auto text = ReadWhole(file);
  if (!text) Fail("cannot read " + file.string());
  Settings settings;
  const std::string fault = ParseSettings(*text, file.string(), settings);
  if (!fault.empty()) Fail(fault);
  return settings;
}

struct Board {
  fs::path folder;
  Settings settings;
};

Board SetUp() {
  Board board;
  board.folder = ChooseFolder();
  const auto socket = board.folder / "run/mbus";
  if (socket.native().size() > kLongestSocketPath) {
    Fail("the folder's path is too long for a socket: " + socket.string() + " has more than " +
         std::to_string(kLongestSocketPath) + " bytes; set QUIVORD_BOARD to a shorter path");
  }
  MakeBoardFolder(board.folder);
  const FileHandle lock = LockFolder(board.folder);  // programs that start at once take turns
  board.settings = ReadSettings(board.folder / "board.conf");
  for (const char* const name : kFolders) MakeFolder(board.folder / name);
  for (const char* const name : kSpareFolders) MakeSpareFolder(board.folder / name);
  CreateSized(board.folder / "faults", kFaultFileSize);
  CreateSized(board.folder / "clock", 8);
  CreateCells(board.folder, board.settings);
  CreateText(board.folder / "sys/class/fpga/fpga_conf", "1\n");
  CreateText(board.folder / "usr/zeph/etc/envcfg/env", "");
  CreateStandIns(board.folder);
  CreateInputs(board.folder, board.settings);
  return board;
}

const Board& TheBoard() {
  static const Board& board = *std::make_unique<const Board>(SetUp()).release();
  return board;
}

}  // namespace

fs::path ChooseFolder() {
  fs::path folder;
  if (const char* const named = NonEmpty("QUIVORD_BOARD")) {
    folder = named;
  } else if (const char* const runtime = NonEmpty("XDG_RUNTIME_DIR")) {
    folder = fs::path(runtime) / "quivord-board";
  } else {
    folder = "/tmp/quivord-board-" + std::to_string(getuid());
  }
  folder = fs::absolute(folder).lexically_normal();
  return folder.has_filename() ? folder : folder.parent_path();
}

const fs::path& Folder() { return TheBoard().folder; }

const Settings& Config() { return TheBoard().settings; }

}  // namespace board
