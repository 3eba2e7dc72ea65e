// The conformance program: all holds on a board, and each way to break a board is found.
#include <gtest/gtest.h>

#include <atomic>
#include <ostream>
#include <thread>

#include "support/board_kit.h"
#include "support/raw_peer.h"
#include "support/run.h"

namespace {

constexpr std::uint32_t kEcho = 0x7F0001;
constexpr auto kLimit = std::chrono::seconds(120);

support::RunResult Check(std::vector<std::string> arguments,
                         const char* program = "quivord-platform-check") {
  arguments.insert(arguments.begin(), support::Built(program));
  return support::Run(arguments, {}, kLimit);
}

// A task on the bus that sends back whatever it gets, to the task that sent it.
class Echo {
 public:
  Echo() : thread_([this] { Run(); }) {}
  Echo(const Echo&) = delete;
  Echo& operator=(const Echo&) = delete;
  ~Echo() {
    ended_ = true;
    thread_.join();
  }

 private:
  void Run() {
    while (!ended_) {
      try {
        support::RawPeer peer(board_kit::Named(), kEcho);
        while (const auto packet = peer.Receive(std::chrono::milliseconds(500))) peer.Send(*packet);
      } catch (const std::system_error&) {  // nobody listens yet, or any more
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
      }
    }
  }

  std::atomic<bool> ended_{false};
  std::thread thread_;
};

TEST(PlatformCheck, AllHoldsOnABoardAndNothingIsLeftOut) {
  const Echo echo;
  const auto run = Check({"--lasting", "--echo", "0x7F0001", "--card", "0", "0"});
  EXPECT_EQ(run.status, 0) << run.out << run.err;
  EXPECT_EQ(run.out.find("FAIL"), std::string::npos) << run.out;
  EXPECT_NE(run.out.find(" 0 do not, 0 not tried\n"), std::string::npos) << run.out;
}

// Not even a write that is to be refused: a port that is half done might take it.
TEST(PlatformCheck, NothingLastingIsTouchedUnasked) {
  board_kit::Configure("trace = flash clock clockchip net info\n");
  EXPECT_EQ(Check({}).status, 0);
  bool live = false;
  for (const std::string& line : board_kit::TraceLines()) {
    const bool written = line.starts_with("flash W live ");
    const bool whole = line.find(" 16777217 ") != std::string::npos;
    EXPECT_TRUE((written && !whole) || line.starts_with("flash R ")) << line;
    live = live || written;
  }
  EXPECT_TRUE(live);
}

TEST(PlatformCheck, WrongUseIsSaid) {
  for (const char* const word : {"--no-such-option", "no-such-subject", "--echo", "--card"}) {
    const auto run = Check({word});
    EXPECT_EQ(run.status, 2) << word;
    EXPECT_NE(run.err.find("'" + std::string(word) + "' is no subject"), std::string::npos);
    EXPECT_NE(run.err.find("quivord-platform-check ["), std::string::npos) << word;
  }
}

struct Broken {
  const char* what;
  const char* settings;  // of the board
  const char* fault;     // counter and count, or null
  std::vector<std::string> arguments;
  const char* claim;  // the line that must say FAIL
};

void PrintTo(const Broken& broken, std::ostream* out) { *out << broken.what; }

class BrokenPlatform : public testing::TestWithParam<Broken> {};

TEST_P(BrokenPlatform, IsFound) {
  const Broken& broken = GetParam();
  board_kit::Configure(broken.settings);
  const auto faults = broken.fault == nullptr
                          ? board_kit::RunTool("peek 0 1")
                          : board_kit::RunTool("fault " + std::string(broken.fault));
  ASSERT_EQ(faults.status, 0) << faults.output;
  const auto run = Check(broken.arguments);
  EXPECT_EQ(run.status, 1) << run.out << run.err;
  const auto at = run.out.find(broken.claim);
  ASSERT_NE(at, std::string::npos) << run.out;
  EXPECT_EQ(run.out.substr(run.out.rfind('\n', at) + 1, 4), "FAIL") << run.out;
}

const Broken kBroken[] = {
    {"Waits", "speed = 20\n", nullptr, {"system"}, "a wait is never shorter"},
    {"ClockChip", "", "clock-chip 1", {"--lasting", "system"}, "the clock chip takes a setting"},
    {"FpgaRead", "", "fpga-read 1", {"fpga"}, "FPGA 1 is read"},
    {"FpgaWrite", "", "fpga-write 1", {"fpga"}, "cells hold what is written"},
    {"FlashRead", "", "flash-read 1", {"flash"}, "the live store is read"},
    {"FlashWrite", "", "flash-write -1", {"flash"}, "a reader never sees half"},
    {"FactoryStore", "", "flash-write -1", {"--lasting", "flash"}, "the prepared copy takes"},
    {"CardRead", "", "card-read -1", {"--card", "0", "0", "recvcard"}, "tells its size"},
    {"CardWrite", "", "card-write 1", {"recvcard"}, "a write is sent"},
    {"BusSend", "", "bus-send 1", {"mbus"}, "are accepted at once"},
    {"Environment", "", "env-open 1", {"envcfg"}, "a key that is set is read back"},
    {"InputRead", "", "edid-read 1", {"inputsource"}, "shows a valid EDID"},
    {"InputWrite", "", "edid-write 1", {"inputsource"}, "shows the EDID that it was given"},
    {"Network", "", "net -1", {"--lasting", "network"}, "an address is set"},
    {"NoCard", "port.0.cards = 0\n", nullptr, {"--card", "0", "0", "recvcard"}, "tells its size"},
};

INSTANTIATE_TEST_SUITE_P(Ways, BrokenPlatform, testing::ValuesIn(kBroken),
                         [](const auto& broken) { return broken.param.what; });

TEST(PlatformCheck, AToolThatDoesNothingIsFound) {
  ASSERT_EQ(board_kit::RunTool("peek 0 1").status, 0);
  board_kit::PutProgram("bin/envcfg", "true");
  const auto run = Check({"envcfg"});
  EXPECT_NE(run.out.find("FAIL  envcfg       what the tool envcfg sets is read"), std::string::npos)
      << run.out;
}

// On the template only Linux answers, and the calculations that come with it.
TEST(PlatformCheck, TheTemplateHasNothingButLinux) {
  const char* const program = "quivord-platform-check-on-template";
  for (const char* const subject : {"envcfg", "flash", "fpga", "recvcard", "mbus", "inputsource"}) {
    const auto run = Check({subject}, program);
    EXPECT_EQ(run.status, 1) << run.out;
    EXPECT_NE(run.err.find("platform: not here: "), std::string::npos) << subject;
  }
  const auto run = Check({"system", "edid", "gamma"}, program);
  EXPECT_NE(run.out.find("FAIL  system       the clock chip opens\n"), std::string::npos);
  EXPECT_NE(run.out.find(" 1 do not, 2 not tried\n"), std::string::npos) << run.out << run.err;
}

}  // namespace
