// The daemon as a child process on a board folder.
#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "quivord/client.h"
#include "support/process.h"

namespace support {

class Daemon {
 public:
  struct Options {
    std::filesystem::path board;
    std::vector<std::string> arguments = {};                     // such as -info
    std::vector<std::string> environment = {};                   // NAME=VALUE
    std::chrono::milliseconds limit = std::chrono::seconds(30);  // for the start
    std::string program = {};  // empty for the daemon of this build
  };

  // Starts the daemon; its standard output and error go to the file `output()`.
  explicit Daemon(Options options);

  // Waits until the daemon answers over the bus; false where it has ended or the limit is over.
  bool WaitUntilItAnswers();

  // Ends it by SIGKILL, as a power cut would.
  void Kill();

  // Its exit status once it has ended by itself; nothing while it still runs after `limit`.
  std::optional<int> Wait(std::chrono::milliseconds limit) { return process_.Wait(limit); }

  pid_t pid() const { return process_.pid(); }
  const std::filesystem::path& board() const { return options_.board; }
  std::filesystem::path output() const { return options_.board / "output.txt"; }

  // What it has said so far.
  std::string OutputText() const;

  // A client of its board, or why there is none.
  quivord::Result<std::unique_ptr<quivord::Client>> Connect(std::uint32_t id) const;

 private:
  const Options options_;
  Process process_;
};

}  // namespace support
