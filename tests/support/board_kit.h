// What tests on a board folder share: configuring it before its first use, its counters, its trace.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "board/board.h"
#include "board/faults.h"

namespace board_kit {

// The folder of this test's board, whether or not it is set up yet.
inline std::filesystem::path Named() { return std::getenv("QUIVORD_BOARD"); }

// Writes the board's configuration; before the first call of the platform.
inline void Configure(const std::string& text) { std::ofstream(Named() / "board.conf") << text; }

// Puts a text into a file of the folder, with the folders that it needs.
inline void Put(const std::string& path, const std::string& text) {
  std::filesystem::create_directories((Named() / path).parent_path());
  std::ofstream(Named() / path) << text;
}

// Puts a script in a stand-in's place.
inline void PutProgram(const std::string& path, const std::string& script) {
  std::filesystem::remove(Named() / path);
  Put(path, "#!/bin/sh\n" + script + "\n");
  std::filesystem::permissions(Named() / path, std::filesystem::perms::owner_all);
}

// The lines of the trace so far, without their times.
inline std::vector<std::string> TraceLines() {
  std::vector<std::string> lines;
  std::ifstream log(Named() / "trace.log");
  for (std::string line; std::getline(log, line);) lines.push_back(line.substr(line.find(' ') + 1));
  return lines;
}

}  // namespace board_kit
