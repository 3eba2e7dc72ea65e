// quivordctl as a user meets it: what it prints, how it ends, what it sends.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <future>
#include <nlohmann/json.hpp>

#include "stub/mcucmessagestruct_layout.h"
#include "support/ctl.h"
#include "support/fake_daemon.h"
#include "support/on_daemon.h"

namespace {

namespace bus = ZEPH_MCUC;
using support::Bytes;
using support::Ctl;
using support::FakeDaemon;
using support::RunResult;
using support::Words;

RunResult On(const FakeDaemon& daemon, Words words) {
  words.insert(words.begin(), {"--board", daemon.board().string()});
  return Ctl(words);
}

class QuivordctlOnADaemon : public support::OnDaemon {
 protected:
  void SetUp() override { Start(); }
};

TEST_F(QuivordctlOnADaemon, ReadsBackWhatItWrote) {
  const RunResult written = Ctl({"write", "0xF0000100", "11", "0x22", "334a"});
  EXPECT_EQ(written.status, 0) << written.err;
  EXPECT_EQ(written.out, "");
  const RunResult text = Ctl({"read", "0xF0000100", "4"});
  EXPECT_EQ(text.status, 0) << text.err;
  EXPECT_EQ(text.out, "0xF0000100  11 22 33 4a  |.\"3J|\n");
  const RunResult json = Ctl({"--json", "read", "0xF0000100", "4"});
  EXPECT_EQ(support::JsonOf(json.out),
            nlohmann::json({{"address", 0xF0000100}, {"length", 4}, {"data", "1122334a"}}));
}

TEST_F(QuivordctlOnADaemon, EndsAsTheDeviceAnswers) {
  for (const auto& row : support::Rows(3, R"(
      read 0x00010000 4               | 0 | no data
      read 0xF0000000 0               | 0 |
      read 0xF0000000 4095            | 0 | 0xF0000FF0
      read 0xF0000000 4096            | 1 | takes 0 to 4095
      read 0x02010000 4               | 1 | no register space has address 0x02010000
      read 0x00010000 513             | 1 | ack 4
      --as owd read 0xF0000000 1      | 0 | 0xF0000000
      --as 0x7F4321 read 0xF0000000 1 | 0 | 0xF0000000
      --as 0x0A4200 read 0xF0000000 1 | 3 | ended the connection
    )")) {
    support::ExpectCtl(row);
  }
}

TEST_F(QuivordctlOnADaemon, LostOutputIsNoSuccess) {
  for (const char* words : {"read 0xF0000100 4", "--json status", "feature show", "--help"}) {
    const std::string line = support::Built("quivordctl") + " " + words + " >/dev/full";
    const RunResult result = support::Run({"/bin/sh", "-c", line});
    EXPECT_EQ(result.status, 2) << words;
    EXPECT_NE(result.err.find("standard output can't be written"), std::string::npos) << result.err;
  }
}

TEST(Quivordctl, WrongUseEndsWith2AndOneLine) {
  for (const char* words : {"",
                            "frobnicate",
                            "read",
                            "read 0xF0000100",
                            "read 0x1FFFFFFFF 4",
                            "read 02000018 4",
                            "read x 4",
                            "read 0xF0000100 -1",
                            "read 0xF0000100 65517",
                            "write 0xF0000100",
                            "write 0xF0000100 1FF",
                            "write 0xF0000100 0x",
                            "write 0xF0000100 zz",
                            "--as nobody read 1 1",
                            "--as 123 read 1 1",
                            "--device toaster read 1 1",
                            "--port 16 read 1 1",
                            "--card 65535 read 1 1",
                            "--timeout 0 read 1 1",
                            "--timeout nan read 1 1",
                            "ping --count 0",
                            "monitor --count 0",
                            "monitor --count x",
                            "record x --for 0",
                            "scale --scaler 4",
                            "manual bogus",
                            "ping --port 3",
                            "output open --card 5",
                            "wall show --port 1",
                            "card size --port all",
                            "card lux --card all",
                            "--device receiver --port all read 1 1"}) {
    const RunResult result = support::ExpectCtl({words, "2"});
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
  }
}

TEST(Quivordctl, NoDaemonEndsWith3AndNamesTheBoard) {
  for (const char* command : {"ping", "monitor"}) {
    const RunResult result = Ctl({"--board", "/nonexistent/board", "--json", command});
    EXPECT_EQ(result.status, 3) << command;
    EXPECT_NE(result.err.find("/nonexistent/board"), std::string::npos) << result.err;
    EXPECT_EQ(support::JsonOf(result.out)["status"], 3);
  }
}

TEST(Quivordctl, DaemonThatDoesNotAnswerEndsWith3InTime) {
  FakeDaemon daemon;
  const auto begin = std::chrono::steady_clock::now();
  const RunResult result = On(daemon, {"--timeout", "0.2", "read", "0xF0000100", "4"});
  EXPECT_EQ(result.status, 3);
  EXPECT_NE(result.err.find("in time"), std::string::npos) << result.err;
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
}

TEST(Quivordctl, WriteThatWouldBeLostIsNotSent) {
  for (const auto& row : support::Rows(3, R"(
      write 0x020001FE 01 02 03 | 1 | 0x0 to 0x1FF of the feature space
      write 0x03009FFF 0102     | 1 | 0x0 to 0x9FFF of the netscanborad space
      write 0x02010000 01       | 1 | no register space
      write 0x01000003 01       | 1 | takes 5 to 512
    )")) {
    support::ExpectCtl(row);  // no daemon is there: a request would end with another status
  }
}

TEST(Quivordctl, RequestsToCardsCarryTheirPlaceAndRefusalsComeInWords) {
  FakeDaemon daemon;
  auto run = std::async(std::launch::async, [&] {
    return On(daemon, {"--device", "distribute", "--port", "all", "--card", "7", "write",
                       "0x02000001", "80"});
  });
  daemon.Accept();
  const Bytes request = daemon.Receive().value_or(Bytes(48));
  bus::FrameHead head =
      bus::ReadFrameHead(std::span(request).subspan(bus::kEnvelopeSize)).value_or(bus::FrameHead{});
  EXPECT_EQ(head.deviceType, bus::JSHL_TypeDistribute);
  EXPECT_EQ(head.portAddress, 0xFF);
  EXPECT_EQ(head.boardAddress, 7);
  head.ack = bus::JSHL_Timeout;
  head.dataLength = 0;
  const auto tag = bus::ReadEnvelope(request.data()).detail;
  daemon.Send(support::Message(support::FrameOf(head), 0, tag));
  const RunResult result = run.get();
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "quivordctl: refused: the card behind the port did not answer (ack 1)\n");
}

void SendReport(FakeDaemon& daemon, std::uint32_t address, const Bytes& data) {
  const auto length = static_cast<std::uint16_t>(data.size());
  daemon.Send(
      support::Message(support::FrameOf({.registerAddress = address, .dataLength = length}, data)));
}

TEST(Quivordctl, MonitorPrintsReportsAsOwdOfTheBoardsSlot) {
  FakeDaemon daemon;
  std::ofstream(daemon.board() / "board.conf") << "slot = 3\n";
  auto run = std::async(std::launch::async, [&] {
    return On(daemon, {"monitor", "--count", "2"});
  });
  EXPECT_EQ(daemon.Accept(), 0x030A3900U);
  SendReport(daemon, 0x14000000, {1});
  SendReport(daemon, 0x0200001F, {0xAB, 0xCD});
  const RunResult result = run.get();
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out,
            "0x14000000 01  ready: the FPGA is loaded and has its parameters\n0x0200001F abcd\n");
}

TEST(Quivordctl, MonitorEndsWith3WhenTheDaemonDies) {
  FakeDaemon daemon;
  auto run = std::async(std::launch::async, [&] { return On(daemon, {"monitor"}); });
  daemon.Accept();
  daemon.HangUp();
  const RunResult result = run.get();
  EXPECT_EQ(result.status, 3);
  EXPECT_NE(result.err.find("the daemon has ended"), std::string::npos) << result.err;
}

}  // namespace
