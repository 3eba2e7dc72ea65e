// The board's bus as a capture file that packet analysers read.
#pragma once

#include <string>

namespace board_tool {

// Writes what the board's trace tells of the bus to `file` ("-" is standard output): what comes
// from now on until SIGINT or SIGTERM, or with `once` all that is there. Returns the exit status.
int Capture(const std::string& file, bool once);

}  // namespace board_tool
