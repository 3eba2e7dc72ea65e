// A shell command of the daemon, turned into one that stays within the board folder. Pure.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace board {

struct Command {
  std::string run;      // for /bin/sh: absolute paths lie in the folder and are quoted
  std::string shown;    // as on a device: without the folder, without quotes around a path
  bool strays = false;  // a word names a path outside the folder
  std::vector<std::string_view>
      stand_ins;  // of the board's own programs, those that the command may run
};

Command BoardCommand(std::string_view text, const std::filesystem::path& folder);

// Where the absolute device path `path` lies: in `folder`, but for what stays the PC's. Anything
// that is no absolute path, or lies in the folder already, comes back as it is.
std::string InFolder(std::string_view path, const std::filesystem::path& folder);

}  // namespace board
