#include "support/sweep_board.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>

#include "board/board.h"
#include "board/cells.h"
#include "board/files.h"
#include "board/folder.h"
#include "board/inputs.h"

namespace sweep {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kPage = 0x18;  // where what is written of the feature page begins
constexpr std::pair<std::uint32_t, std::uint32_t> kTables[] = {
    {0x500000, 0x200},  {0x501000, 0x80},   {0x502000, 0x80},   {0x600000, 0xA000},
    {0x700000, 0x2000}, {0x710000, 0x2000}, {0x720000, 0x2000}, {0xD00000, 0x60}};

constexpr const char* kEnvironment = "usr/zeph/etc/envcfg/env";
constexpr const char* kBootEnvironment = "usr/brm100/bootenv";
constexpr const char* kPlaces[] = {kEnvironment,
                                   kBootEnvironment,
                                   "usr/zeph/etc/envcfg/brmpara_factory_tmp",
                                   "usr/zeph/etc/owd/cabCfg",
                                   "inputs",
                                   "root/.config",
                                   "usr/brm100/bin/kye"};

// An environment's lines stand in the order in which they were first set, which a fault may change.
std::string SortedLines(const std::string& text) {
  std::istringstream stream(text);
  std::multiset<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.insert(line + "\n");
  std::string sorted;
  for (const std::string& line : lines) sorted += line;
  return sorted;
}

// The plain files among and below `kPlaces`.
std::vector<fs::path> Plain() {
  std::vector<fs::path> paths;
  for (const char* const place : kPlaces) {
    const fs::path path = board::Folder() / place;
    if (fs::is_regular_file(path)) paths.push_back(path);
    if (!fs::is_directory(path)) continue;
    for (const auto& entry : fs::recursive_directory_iterator(path)) {
      if (entry.is_regular_file()) paths.push_back(entry.path());
    }
  }
  return paths;
}

std::string NameOf(const fs::path& path) { return path.lexically_relative(board::Folder()); }

}  // namespace

Cells ReadCells(std::uint32_t pageEnd) {
  Cells cells;
  const auto read = [&](std::uint32_t address, std::uint32_t length) {
    board::LoadCells(1, address, length, (cells[address] = Bytes(length)).data());
  };
  read(kPage, pageEnd - kPage);
  for (const auto& [address, length] : kTables) read(address, length);
  return cells;
}

Files ReadFiles() {
  Files files;
  for (const fs::path& path : Plain()) files[NameOf(path)] = board::ReadWhole(path).value_or("");
  for (const char* const name : {kEnvironment, kBootEnvironment}) {
    if (const auto file = files.find(name); file != files.end()) {
      file->second = SortedLines(file->second);
    }
  }
  return files;
}

void PutFiles(const Files& files) {
  for (const fs::path& path : Plain()) {
    if (!files.contains(NameOf(path))) fs::remove(path);
  }
  for (const auto& [name, content] : files) {
    const fs::path path = board::Folder() / name;
    if (board::ReadWhole(path) == content) continue;
    fs::create_directories(path.parent_path());
    if (!board::ReplaceWhole(path, content)) board::Fail("the sweep can't put " + name + " back");
  }
}

void MakeNewFiles() {
  PutFiles({{kEnvironment, ""}});
  board::CreateInputs(board::Folder(), board::Config());
}

std::string Difference(const Cells& cells, const Cells& wanted, const std::vector<Region>& free) {
  for (const auto& [base, bytes] : wanted) {
    const Bytes& present = cells.at(base);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      if (present[i] != bytes[i] && !Covers(free, base + i)) {
        return "the FPGA's " + At(base + i, "differs");
      }
    }
  }
  return "";
}

std::string Difference(const Files& files, const Files& wanted) {
  Files all = wanted;
  all.insert(files.begin(), files.end());
  for (const auto& [name, content] : all) {
    const auto one = files.find(name);
    const auto other = wanted.find(name);
    if (one == files.end()) return name + " is missing";
    if (other == wanted.end()) return name + " is too many";
    if (one->second != other->second) return name + " differs";
  }
  return "";
}

}  // namespace sweep
