// Bus traffic as a capture, taken apart by tshark with the dissector of tools/wireshark.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iterator>

#include "pcapng.h"
#include "stub/frame_layout.h"
#include "support/board_kit.h"
#include "support/ctl.h"
#include "support/daemon.h"
#include "support/raw_peer.h"

namespace {

using namespace ZEPH_MCUC;
using support::Bytes;
using support::FrameOf;

constexpr std::uint32_t kPeer = 0x7F0001;
constexpr auto kSlow = std::chrono::seconds(120);  // the analyser, on a busy machine

class Capture : public testing::Test {
 protected:
  void SetUp() override {
    if (!std::filesystem::exists("/usr/bin/tshark")) GTEST_SKIP() << "tshark is missing";
  }

  static std::string File() { return board_kit::Named() / "bus.pcapng"; }

  // What tshark says of the capture; its own settings are out of the way.
  static std::string Tshark(const support::Words& options) {
    support::Words command = {"/usr/bin/tshark",
                              "-n",
                              "-r",
                              File(),
                              "-X",
                              "lua_script:" + support::Source("tools/wireshark/quivord.lua")};
    command.insert(command.end(), options.begin(), options.end());
    const auto run = support::Run(command, {"HOME=" + board_kit::Named().string()}, kSlow);
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ((run.out + run.err).find("Lua"), std::string::npos) << run.out << run.err;
    return run.out;
  }
};

FrameHead Ask(std::uint32_t address, std::uint16_t length, JSHL_ProtoRequestType_e code) {
  return {
      .code = static_cast<std::uint8_t>(code), .registerAddress = address, .dataLength = length};
}

TEST_F(Capture, ASessionIsTakenApart) {
  board_kit::Configure("trace = bus\n");
  support::Daemon daemon({.board = board_kit::Named()});
  ASSERT_TRUE(daemon.WaitUntilItAnswers()) << daemon.OutputText();
  support::RawPeer peer(board_kit::Named(), kPeer);
  Bytes broken = FrameOf(Ask(0x02000024, 2, JSHL_PROTOREAD));
  broken.back() ^= 1;
  for (const Bytes& frame : {FrameOf(Ask(0xF00001DE, 1, JSHL_PROTOWRITE), {0x5A}),
                             FrameOf(Ask(0xF00001DE, 1, JSHL_PROTOREAD)),
                             FrameOf(Ask(0x02000012, 3000, JSHL_PROTOREAD)), broken}) {
    ASSERT_TRUE(peer.Send(support::Message(frame, kPeer, 1)));
    ASSERT_TRUE(peer.Receive().has_value());
  }
  const auto tool = support::Run(
      {support::Built("quivord-board"), "capture", File(), board_kit::Named(), "--once"});
  ASSERT_EQ(tool.status, 0) << tool.err;
  // Direction, kind, register, name, ack, length, checksum; of this peer's frames.
  EXPECT_EQ(
      Tshark({"-Y", "quivord.peer == 0x7f0001", "-T", "fields",       "-E", "separator=,",
              "-e", "quivord.direction",        "-e", "quivord.kind", "-e", "quivord.register",
              "-e", "quivord.register.name",    "-e", "quivord.ack",  "-e", "quivord.length",
              "-e", "quivord.checksum.status"}),
      "0,request,0xf00001de,output,0,1,1\n"
      "1,reply,0xf00001de,output,0,0,1\n"
      "0,request,0xf00001de,output,0,1,1\n"
      "1,reply,0xf00001de,output,0,1,1\n"
      "0,request,0x02000012,time,0,3000,1\n"
      "1,reply,0x02000012,time,4,0,1\n"
      "0,request,0x02000024,real-width,0,2,0\n"
      "1,reply,0x02000024,real-width,2,0,1\n");
  EXPECT_NE(Tshark({"-Y", "quivord.checksum.bad"}).find("0x7F0001 \xE2\x86\x92 quivord"),
            std::string::npos);
}

// Packets cut at every length, with and without an envelope, and ones that say nonsense.
TEST_F(Capture, WhatIsMissingIsNeverRead) {
  const Bytes frame = FrameOf(Ask(0x02000024, 2, JSHL_PROTOWRITE), {1, 2});
  const Bytes enveloped = support::Message(frame, kPeer, 7);
  std::vector<Bytes> packets;
  for (const Bytes& inner : {frame, enveloped}) {
    const bool has_envelope = inner.size() != frame.size();
    Bytes packet = {1, static_cast<std::uint8_t>(has_envelope ? 2 : 0), 0, 0, 1, 0, 0x7F, 0};
    std::copy(inner.begin(), inner.end(), std::back_inserter(packet));
    for (std::size_t size = 0; size <= packet.size(); ++size) {
      packets.emplace_back(packet.begin(), packet.begin() + static_cast<std::ptrdiff_t>(size));
    }
    packets.emplace_back(packet.size(), 0xFF);
    packet[packet.size() - 5] = 0xFF;  // says 65282 bytes of data
    packets.push_back(packet);
    packet[0] = 9;
    packets.push_back(packet);
  }
  std::filesystem::create_directories(board_kit::Named());
  std::FILE* const stream = std::fopen(File().c_str(), "wb");
  ASSERT_NE(stream, nullptr);
  board_tool::Pcapng capture(stream, 147, "quivord bus");
  for (const Bytes& packet : packets) {
    capture.Add(1'000'000, board_tool::Pcapng::Direction::kInbound, packet);
  }
  EXPECT_TRUE(capture.Flush());
  EXPECT_EQ(std::fclose(stream), 0);

  const auto lines = [](const std::string& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
  };
  EXPECT_EQ(lines(Tshark({"-Y", "quivord"})), packets.size());
  Tshark({"-V"});  // shows what goes wrong in the dissector
  EXPECT_EQ(lines(Tshark({"-Y", "quivord.checksum.status == 1"})), 2U);
  EXPECT_EQ(lines(Tshark({"-Y", "quivord.short"})), (8 + 20) + (8 + 28 + 20));
  EXPECT_EQ(lines(Tshark({"-Y", "quivord.unknown_version"})), 4U);
  EXPECT_EQ(lines(Tshark({"-Y", "quivord.envelope.detail == 7"})), 20U + 3U + 1U);
}

}  // namespace
