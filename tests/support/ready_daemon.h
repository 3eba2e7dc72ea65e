// A daemon on the board of this test whose FPGA has loaded.
#pragma once

#include <gtest/gtest.h>

#include <future>

#include "board/board.h"
#include "board/power.h"
#include "support/board_kit.h"
#include "support/daemon.h"

namespace support {

class ReadyDaemon {
 public:
  // Configures the board, starts the daemon, and waits until it reports that the FPGA is filled.
  explicit ReadyDaemon(const std::string& configuration)
      : daemon_({.board = Folder(configuration)}) {
    EXPECT_TRUE(daemon_.WaitUntilItAnswers()) << daemon_.OutputText();
    std::promise<void> ready;
    const auto owd = std::move(quivord::Client::Connect({.board = daemon_.board(),
                                                         .id = kOwd,
                                                         .on_report =
                                                             [&](const quivord::Report& report) {
                                                               if (report.address == kReady)
                                                                 ready.set_value();
                                                             }})
                                   .value());
    // Once answered, it is known on the bus.
    EXPECT_TRUE(bool(owd->Call({.address = kFeatures, .length = 1}, kLimit)));
    board::FinishFpgaLoad();
    EXPECT_EQ(ready.get_future().wait_for(kLimit), std::future_status::ready);
  }

  Daemon& operator*() { return daemon_; }
  Daemon* operator->() { return &daemon_; }

 private:
  static constexpr auto kLimit = std::chrono::seconds(30);
  static constexpr std::uint32_t kOwd = 0x0A3900;
  static constexpr std::uint32_t kReady = 0x14000000;
  static constexpr std::uint32_t kFeatures = 0x02000000;

  static std::filesystem::path Folder(const std::string& configuration) {
    board_kit::Configure(configuration);
    return board::Folder();
  }

  Daemon daemon_;
};

}  // namespace support
