// Tests against a daemon that runs on the board of this test.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "board/power.h"
#include "support/board_kit.h"
#include "support/daemon.h"
#include "support/eventually.h"

namespace support {

class OnDaemon : public testing::Test {
 protected:
  void Start(std::vector<std::string> arguments = {}, std::vector<std::string> environment = {}) {
    daemon_.emplace(Daemon::Options{.board = board_kit::Named(),
                                    .arguments = std::move(arguments),
                                    .environment = std::move(environment)});
    ASSERT_TRUE(daemon_->WaitUntilItAnswers()) << daemon_->OutputText();
  }
  // Lets the FPGA load, and waits until the daemon has filled it.
  void Load() {
    board::FinishFpgaLoad();
    ASSERT_TRUE(
        Eventually([&] { return daemon_->OutputText().find("load flag") != std::string::npos; }));
  }
  // Ends it as a power cut would, and starts it again.
  void Restart() {
    daemon_.reset();
    Start();
  }

  // A file in the board's folder, for a command to read or write.
  static std::string File(const std::string& name) { return board_kit::Named() / name; }

  std::optional<Daemon> daemon_;
};

}  // namespace support
