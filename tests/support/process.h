// A child process: started with an environment of its own, ended and awaited with the object.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace support {

struct Start {
  std::vector<std::string> command;           // program (with its path) and arguments
  std::vector<std::string> environment = {};  // NAME=VALUE, on top of this process's own
  int out = -1;                               // descriptors to become the child's standard output
  int err = -1;                               // and standard error; -1 leaves this process's own
};

class Process {
 public:
  // Throws std::system_error where the program can't be started.
  explicit Process(const Start& start);
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  ~Process();  // by SIGKILL if it still runs

  pid_t pid() const { return pid_; }

  // The exit status, 128 + n after signal n; nothing while it still runs after `limit`.
  std::optional<int> Wait(std::chrono::milliseconds limit);

  // Sends a signal, unless the process is known to have ended.
  void Signal(int number);

 private:
  pid_t pid_ = -1;
  std::optional<int> status_;
};

}  // namespace support
