// Runs a program to its end and keeps what it said.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace support {

struct RunResult {
  int status = -1;  // exit status, 128 + n after signal n, -1 where the time limit ended it
  std::string out;
  std::string err;
};

// `command` is the program (with its path) and its arguments; `environment` are NAME=VALUE on top
// of this process's own. Ends the program by SIGKILL after `limit`.
RunResult Run(const std::vector<std::string>& command,
              const std::vector<std::string>& environment = {},
              std::chrono::milliseconds limit = std::chrono::seconds(30));

// The path of a program of this build, and of a file of the sources.
std::string Built(const std::string& program);
std::string Source(const std::string& file);

// The number in an environment variable, by which a script asks for a longer run; `otherwise` where
// it isn't set.
int FromEnvironment(const char* name, int otherwise);

}  // namespace support
