// The daemon on its bus: what peers send, in good order and in bad, and what comes back.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "board/files.h"
#include "stub/mcucmessagestruct_layout.h"
#include "support/board_kit.h"
#include "support/inprocess.h"
#include "support/on_daemon.h"
#include "support/raw_peer.h"
#include "support/run.h"

namespace {

using namespace ZEPH_MCUC;
using inprocess::Bytes;
using support::FrameOf;
using support::RawPeer;
using Data = std::vector<uint8_t>;

Data WithWrongSum(Data frame) {
  frame.back() ^= 1;
  return frame;
}

struct Labels {
  uint16_t small = LABEL_MSG_LOCAL;
  uint16_t large = LABEL_MSG;
};

Data Message(uint32_t tag, const Data& frame, Labels labels = {}) {
  Data packet = support::Message(frame, 0, tag);
  DWQ_ENCWD(&packet[20], labels.small);
  DWQ_ENCWD(&packet[22], labels.large);
  return packet;
}

constexpr uint32_t kTestCell = 0xF0400000;
constexpr uint32_t kGoodTag = 0x600D;

// Asks for a register: the reply to that and to nothing before it, since a peer's messages keep
// their order.
void ExpectAnswer(RawPeer& peer) {
  ASSERT_TRUE(
      peer.Send(Message(kGoodTag, FrameOf({.registerAddress = kTestCell, .dataLength = 4}))));
  const Data reply = peer.Receive().value_or(Data{});
  ASSERT_EQ(reply.size(), 28U + 24U);
  EXPECT_EQ(DWQ_DECDW(&reply[16]), kGoodTag);
  EXPECT_EQ(reply[28 + 2], 0);
}

class Bus : public support::OnDaemon {
 protected:
  void TearDown() override {
    EXPECT_EQ(daemon_->OutputText().find("Sanitizer"), std::string::npos) << daemon_->OutputText();
  }
  static RawPeer Connect(uint32_t id) { return {board_kit::Named(), id}; }
};

TEST_F(Bus, ReplyIsPinnedByteForByte) {
  Start();
  RawPeer peer = Connect(0x007F1234);
  ASSERT_TRUE(
      peer.Send(Bytes("FFFFFFFF 07000000 08000000 09000000 0A000000 0100 1C00 18000000"
                      "55AA EE000000 0000 0000 0100 000040F0 0400 11223344 2258")));
  EXPECT_EQ(peer.Receive(), Bytes("34127F00 07000000 08000000 00000000 0A000000 0100 1C00 14000000"
                                  "AA55 00000000 0000 0000 0100 000040F0 0000 8656"));
  ASSERT_TRUE(
      peer.Send(Bytes("00000000 00000000 00000000 00000000 00000000 0000 1C00 14000000"
                      "55AA 00000000 0000 0000 0000 000040F0 0400 8956")));
  EXPECT_EQ(peer.Receive(), Bytes("34127F00 00000000 00000000 00000000 00000000 0000 1C00 18000000"
                                  "AA55 00000000 0000 0000 0000 000040F0 0400 11223344 3357"));
}

// What a daemon holds open, by kind or by place in the board's folder, a log without its number;
// without what it got from this process.
std::multiset<std::string> OpenFiles(const support::Daemon& daemon) {
  namespace fs = std::filesystem;
  std::multiset<std::string> files;
  for (const auto& entry :
       fs::directory_iterator("/proc/" + std::to_string(daemon.pid()) + "/fd")) {
    std::error_code missing;  // it may be closed meanwhile, and here there may be none
    const std::string target = fs::read_symlink(entry, missing);
    const fs::path own = "/proc/self/fd" / entry.path().filename();
    if (target.empty() || fs::read_symlink(own, missing) == target) continue;
    const std::string board = daemon.board().string() + "/";
    const std::string name = target.starts_with(board) ? target.substr(board.size()) : target;
    const std::size_t number = std::min(name.find_first_of("[_"), name.size());
    files.insert(name.starts_with("anon") ? name : name.substr(0, number));
  }
  return files;
}

TEST_F(Bus, DaemonHoldsOpenWhatItServesWithAndNothingElse) {
  const std::multiset<std::string> needed = {"output.txt",
                                             "output.txt",  // standard output and error
                                             "var/run/quivord.pid",
                                             "log/quivord",  // its lock and its log
                                             "fpga/0.mem",
                                             "fpga/1.mem",  // the simulated FPGAs
                                             "socket:",
                                             "anon_inode:[eventpoll]",
                                             "anon_inode:[eventfd]"};  // the bus
  Start();
  Load();
  EXPECT_TRUE(support::Eventually([&] { return OpenFiles(*daemon_) == needed; }))
      << testing::PrintToString(OpenFiles(*daemon_));
}

struct Case {
  const char* name;
  Data packet;
  std::optional<uint8_t> ack;  // none: no reply
  std::size_t bytes = 0;       // that the reply carries
};

std::vector<Case> Cases() {
  const Data good = FrameOf({.registerAddress = kTestCell, .dataLength = 4});
  const auto write = [](uint16_t length, std::size_t bytes) {
    return Message(1, FrameOf({.code = 1, .registerAddress = kTestCell, .dataLength = length},
                              Data(bytes, 5)));
  };
  return {
      {"no frame", Message(1, {}), {}},
      {"19 bytes of frame", Message(1, Data(19)), {}},
      {"large label of somebody else", Message(1, good, {.large = 27}), {}},
      {"small label 2", Message(1, good, {.small = 2}), {}},
      {"small label 3", Message(1, good, {.small = 3}), {}},
      {"small label 4", Message(1, good, {.small = 4}), {}},
      {"small label 1", Message(1, good, {.small = 1}), 0, 4},
      {"zeros", Message(1, Data(20)), 2},
      {"a read with 65516 bytes behind it",
       Message(1, FrameOf({.registerAddress = kTestCell, .dataLength = 4}, Data(65516))), 0, 4},
      {"wrong sum", Message(1, WithWrongSum(FrameOf({.registerAddress = kTestCell}))), 2},
      {"wrong sum, destination 5",
       Message(1, WithWrongSum(FrameOf({.destinationAddress = 5, .registerAddress = kTestCell}))),
       2},
      {"destination 5",
       Message(1,
               FrameOf({.destinationAddress = 5, .registerAddress = kTestCell, .dataLength = 4})),
       0, 4},
      {"device type 9",
       Message(1, FrameOf({.deviceType = 9, .registerAddress = kTestCell, .dataLength = 4})), 0},
      {"operation 9",
       Message(1, FrameOf({.code = 9, .registerAddress = kTestCell, .dataLength = 4})), 0},
      {"a write that promises more", write(200, 199), 5},
      {"a write of 64 KiB", write(65516, 65516), 4},
      {"a write with more than promised", write(1, 300), 0},
  };
}

TEST_F(Bus, BadRequestsHurtNobody) {
  Start();
  RawPeer other = Connect(0x7F0002);
  for (const Case& c : Cases()) {
    SCOPED_TRACE(c.name);
    RawPeer peer = Connect(0x7F0001);
    ASSERT_TRUE(peer.Send(c.packet));
    if (c.ack.has_value()) {
      const Data reply = peer.Receive().value_or(Data{});
      ASSERT_EQ(reply.size(), 28 + 20 + c.bytes);
      EXPECT_EQ(DWQ_DECDW(&reply[12]), *c.ack) << "result in the envelope";
      EXPECT_EQ(reply[28 + 2], *c.ack) << "ack in the frame";
      EXPECT_EQ(DWQ_DECDW(&reply[16]), 1U) << "tag";
    }
    ExpectAnswer(peer);
    ExpectAnswer(other);
  }
  EXPECT_NE(daemon_->OutputText().find("Not this KVX7000's Msg, addr = 5 sequse id = 0"),
            std::string::npos);
}

TEST_F(Bus, SecondDaemonIsRefusedAndTheFirstGoesOn) {
  Start();
  const auto second = support::Run({support::Built("quivord"), "-disable"});
  EXPECT_EQ(second.status, 1);
  EXPECT_TRUE(second.err.starts_with("quivord: already running, stop that one first: "))
      << second.err;
  EXPECT_EQ(std::count(second.err.begin(), second.err.end(), '\n'), 1);
  const auto number = board_kit::Named() / "var/run/quivord.pid";
  EXPECT_EQ(board::ReadWhole(number), std::to_string(daemon_->pid()));
  RawPeer peer = Connect(0x7F0001);
  ExpectAnswer(peer);
  daemon_->Kill();
  Start();  // the lock and the socket of a daemon that was killed are in nobody's way
  RawPeer again = Connect(0x7F0001);
  ExpectAnswer(again);
  daemon_->Kill();
  std::filesystem::remove(number);
  std::filesystem::create_directory(number);
  const auto third = support::Run({support::Built("quivord"), "-disable"});
  EXPECT_EQ(third.status, 1);
  EXPECT_EQ(third.err, "quivord: cannot open " + number.string() + ": Is a directory\n");
}

// All threads at work: the loop polls and reports, the queue works, peers read and write.
TEST_F(Bus, LoopWorkAndRequestsRunSideBySide) {
  board_kit::Put("etc/init.d/flag_fpgaload", "");
  Start();
  RawPeer service = Connect(task::kOwd);
  RawPeer peer = Connect(0x7F0001);
  for (uint8_t i = 0; i < 60; ++i) {
    ASSERT_TRUE(peer.Send(Message(
        1, FrameOf({.code = 1, .registerAddress = 0x02000050U + i, .dataLength = 1}, {i}))));
    ASSERT_TRUE(peer.Send(Message(1, FrameOf({.registerAddress = 0x020001E8, .dataLength = 16}))));
    EXPECT_EQ(peer.Receive().value_or(Data{}).size(), 28U + 20U);
    EXPECT_EQ(peer.Receive().value_or(Data{}).size(), 28U + 20U + 16U);
  }
  const auto report = service.Receive();  // the loop has seen the service and reports afresh
  ASSERT_TRUE(report.has_value());
  EXPECT_EQ(DWQ_DECDW(&(*report)[16]), 0U) << "a report has no tag";
}

TEST_F(Bus, StartsInItsOrder) {
  board_kit::Configure("trace = shell env flash fpga bus\n");
  Start({"-info"});
  // The first line of each step, in the order in which they must come; the FPGA, which has not
  // loaded, is left alone by all but the threads.
  constexpr const char* kSteps[] = {
      "shell 0 mkdir -p /log", "shell 0 mkdir -p /tmp/quivord", "flash R live 0x00a3b100 512 ok",
      "env get ver_rootfs",    "env set ver_quivord V1.0.B1",   "bus > "};
  const auto lines = board_kit::TraceLines();
  auto at = lines.begin();
  for (const char* step : kSteps) {
    at = std::find_if(at, lines.end(), [&](const auto& line) { return line.starts_with(step); });
    ASSERT_NE(at, lines.end()) << step;
    if (*at != "env set ver_quivord V1.0.B1") continue;
    EXPECT_TRUE(std::none_of(lines.begin(), at, [](auto& l) { return l.starts_with("fpga"); }));
  }
}

}  // namespace
