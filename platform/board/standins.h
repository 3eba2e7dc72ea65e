// The outside programs that are the board's own: stand-ins that never touch the PC.
#pragma once

#include <array>
#include <filesystem>
#include <string_view>

namespace board {

// Their places in the board folder.
inline constexpr std::array<std::string_view, 7> kStandIns = {"bin/envcfg",
                                                              "bin/fpga",
                                                              "bin/hwclock",
                                                              "bin/killall",
                                                              "bin/reboot",
                                                              "bin/sync",
                                                              "usr/brm100/bin/fw_setenv"};

// Puts missing ones into `folder`: links to the board program beside the running program, else to
// the one named when this library was built. Where there is none the process ends (`Fail`).
void CreateStandIns(const std::filesystem::path& folder);

}  // namespace board
