// Programs that the board program starts and watches.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

namespace board_tool {

using Clock = std::chrono::steady_clock;

// The folder of the program that runs: what is built together lies together.
std::filesystem::path OwnFolder();

// Starts `program` with `options`, its standard output to nowhere where `quiet`. It gets SIGTERM
// when this program ends, so that none is left behind. Its process id, or -1 with a message.
// SIGCHLD, SIGINT and SIGTERM are to be blocked (`BlockWatched`) before the first start.
pid_t Start(const std::string& program, const std::vector<std::string>& options, bool quiet);

// From here on SIGCHLD, SIGINT and SIGTERM come by `NextSignal` only.
void BlockWatched();

// Waits for one of them until `deadline`; 0 when that has passed.
int NextSignal(Clock::time_point deadline);

// The exit status in what waitpid gave, 128 + n after signal n.
int ExitStatus(int waited);

}  // namespace board_tool
