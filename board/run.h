// Runs the daemon on the board as the device's init would.
#pragma once

#include <string>
#include <vector>

namespace board_tool {

// Starts the daemon that lies beside this program with `options`, creates the flag file when the
// FPGA has loaded, starts the daemon again after a reboot and, with a power-up first, after a power
// cut; passes SIGINT and SIGTERM on. Returns the daemon's exit status, 128 + n after signal n, or
// kFailed where there is no daemon to start.
int RunDaemon(const std::vector<std::string>& options);

}  // namespace board_tool
