// The daemon under `quivord-board run` on the board of this test: it starts again after a reboot
// and after a power cut.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>

#include "board/files.h"
#include "support/board_kit.h"
#include "support/process.h"
#include "support/run.h"

namespace support {

class Supervised {
 public:
  Supervised() : process_(HowToStart(Output())) {}
  ~Supervised() {
    process_.Signal(SIGTERM);  // it passes that on
    process_.Wait(std::chrono::seconds(10));
  }

  // Waits until a daemon has loaded the FPGA, the present one or, where `again`, one that was
  // started after `Mark`. False after half a minute.
  bool AwaitReady(bool again = false) const {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (std::chrono::steady_clock::now() < deadline) {
      const std::string said = Said();
      const std::size_t start = said.rfind("starts again");
      const bool started = start != std::string::npos && start >= mark_;
      const std::size_t from = start == std::string::npos ? 0 : start;
      if ((started || !again) && said.find("load flag", from) != std::string::npos) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return false;
  }

  // From here on a start counts as one again.
  void Mark() { mark_ = Said().size(); }

  std::string Said() const { return board::ReadWhole(Path()).value_or(""); }

 private:
  static std::filesystem::path Path() { return board_kit::Named() / "output.txt"; }
  static int Output() {  // what a daemon of the test before said doesn't count
    return open(Path().c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0644);
  }
  static Start HowToStart(int output) {
    return {.command = {Built("quivord-board"), "run", board_kit::Named()},
            .out = output,
            .err = output};
  }

  Process process_;
  std::size_t mark_ = 0;
};

}  // namespace support
