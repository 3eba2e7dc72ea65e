// What tests on a board folder share: configuring it before its first use, its counters, its trace.
#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "board/board.h"
#include "board/faults.h"
#include "support/run.h"

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

// Puts bytes into the live store at `address`, as an earlier run left them; after the board is set
// up.
inline void StoreFlash(std::uint32_t address, const std::vector<std::uint8_t>& bytes) {
  std::fstream store(Named() / "usr/zeph/etc/envcfg/brmpara",
                     std::ios::in | std::ios::out | std::ios::binary);
  store.seekp(address);
  store.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
}

// Puts a script in a stand-in's place.
inline void PutProgram(const std::string& path, const std::string& script) {
  std::filesystem::remove(Named() / path);
  Put(path, "#!/bin/sh\n" + script + "\n");
  std::filesystem::permissions(Named() / path, std::filesystem::perms::owner_all);
}

struct Ran {
  int status;          // exit status, 128 + n after signal n
  std::string output;  // standard output and error
};

// Runs a command of the PC's shell on this test's board.
inline Ran RunCommand(const std::string& command) {
  std::FILE* const stream = popen((command + " 2>&1").c_str(), "r");
  Ran ran{-1, {}};
  for (int c = 0; (c = std::fgetc(stream)) != EOF;) ran.output += static_cast<char>(c);
  const int status = pclose(stream);
  ran.status = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
  return ran;
}

// Runs the board program with these arguments.
inline Ran RunTool(const std::string& arguments) {
  return RunCommand(support::Built("quivord-board") + " " + arguments);
}

// The lines of the trace so far, without their times.
inline std::vector<std::string> TraceLines() {
  std::vector<std::string> lines;
  std::ifstream log(Named() / "trace.log");
  for (std::string line; std::getline(log, line);) lines.push_back(line.substr(line.find(' ') + 1));
  return lines;
}

}  // namespace board_kit
