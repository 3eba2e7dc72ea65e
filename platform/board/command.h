// A shell command of the daemon, turned into one that stays within the board folder. Pure.
#pragma once

#include <array>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace board {

// The outside programs that are the board's own, by their places in the folder.
inline constexpr std::array<std::string_view, 7> kStandIns = {"bin/envcfg",
                                                              "bin/fpga",
                                                              "bin/hwclock",
                                                              "bin/killall",
                                                              "bin/reboot",
                                                              "bin/sync",
                                                              "usr/brm100/bin/fw_setenv"};

struct Command {
  std::string run;      // for /bin/sh: absolute paths lie in the folder and are quoted
  std::string shown;    // as on a device: without the folder, without quotes around a path
  bool strays = false;  // a word names a path outside the folder
  std::vector<std::string_view> stand_ins;  // those of kStandIns that the command may run
};

Command BoardCommand(std::string_view text, const std::filesystem::path& folder);

// Where the absolute device path `path` lies: in `folder`, but for what stays the PC's. Anything
// that is no absolute path, or lies in the folder already, comes back as it is.
std::string InFolder(std::string_view path, const std::filesystem::path& folder);

}  // namespace board
