// The FPGA's report channel: its settings, the self-test, and datagrams over a real socket.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <thread>

#include "board/faults.h"
#include "stub/fpgareportthread.h"
#include "support/child.h"
#include "support/device.h"
#include "support/eventually.h"
#include "support/inprocess.h"
#include "support/trace.h"

namespace {

using namespace ZEPH_MCUC;
using board::Fault;
using board::SetFaultCount;
using Data = std::vector<std::uint8_t>;

TEST(ReportChannel, DatagramsAreMeasuredBeforeTheyAreRead) {
  Data largest(9 + 1024 + 2);
  largest[7] = 0x00;
  largest[8] = 0x04;
  largest[1033] = 0x04;  // the sum
  Data tooLong = largest;
  tooLong[7] = 0x01;
  struct Case {
    const char* name;
    Data datagram;
    ReportFault fault;
  };
  const Case kCases[] = {
      {"head without a sum", Data(10), ReportFault::kTooShort},
      {"no data", Data(11), ReportFault::kNone},
      {"two bytes", inprocess::Bytes("01 0200 78563412 0200 a0b0 6902"), ReportFault::kNone},
      {"two bytes, wrong sum", inprocess::Bytes("01 0200 78563412 0200 a0b0 6802"),
       ReportFault::kChecksum},
      {"two bytes, one cut off", inprocess::Bytes("01 0200 78563412 0200 a0b0 69"),
       ReportFault::kTooShort},
      {"more behind the sum", inprocess::Bytes("01 0200 78563412 0200 a0b0 6902 ff"),
       ReportFault::kNone},
      {"1024 bytes", largest, ReportFault::kNone},
      {"1025 bytes", tooLong, ReportFault::kLength},
  };
  for (const Case& c : kCases) {
    UDP_MESG_T head{};
    EXPECT_EQ(CheckReport(c.datagram, &head), c.fault) << c.name;
    if (std::string(c.name) != "two bytes") continue;
    EXPECT_EQ(head.PacketType, 1);
    EXPECT_EQ(head.Label, 2);
    EXPECT_EQ(head.addr, 0x12345678U);
    EXPECT_EQ(head.length, 2);
  }
}

TEST(ReportChannel, SettingsLeaveReportingOff) {
  device::Begin("fpga");
  device::Log log;
  FpgaReportThread channel([] { return false; });
  support::Trace trace;
  EXPECT_EQ(channel.FPGAReport_init(), 0);
  EXPECT_EQ(trace.Take(), "fpga W 0x100071 04009001\nfpga W 0x100070 00\n");
  SetFaultCount(Fault::kFpgaWrite, 6);
  EXPECT_EQ(channel.FPGAReport_init(), 0);
  const std::string lines = log.Take();
  EXPECT_EQ(support::Count(lines, "Info === Write reprot para Reg failed! ret = -1"), 1);
  EXPECT_EQ(support::Count(lines, "Info === Write reprot enable Reg failed! ret = -1"), 1);
}

TEST(ReportChannel, SelfTestWritesAndReadsBackBothMemories) {
  device::Begin("fpga");
  device::Log log(0);
  support::Trace trace;
  testfpgareadwrite();
  std::string expected;
  for (const auto& [address, largest] : {std::pair{"0x600000", 1024}, {"0x500000", 256}}) {
    for (int size = 16; size <= largest; size *= 2) {
      const std::string place = std::string(address) + " x" + std::to_string(size) + "\n";
      for (int pattern = 0; pattern < 2; ++pattern) {
        expected.append("fpga W ").append(place).append("fpga R ").append(place);
      }
    }
  }
  EXPECT_EQ(trace.Take(), expected);
  EXPECT_EQ(log.Take(), "");
  EXPECT_EQ(device::Fpga(0x6003FF, 2), "5500") << "the second pattern, in the largest size";
  EXPECT_EQ(device::Fpga(0x5000FF, 2), "5500");
}

Relaxed<bool> g_on{false};

TEST(ReportChannel, ThreadTestsWhileItIsToldToAndEnds) {
  device::Begin("fpga");
  device::Log log;
  support::Trace trace;
  FpgaReportThread channel([] { return bool{g_on}; });
  std::thread body([&] { channel.ActiveReport(); });
  const auto runs = [](const std::string& lines) {
    return support::Count(lines, "fpga W 0x600000 x1024");
  };
  std::string lines;
  EXPECT_TRUE(support::Eventually(
      [&] { return (lines += trace.Take()).find("0x100070") != std::string::npos; }));
  usleep(5000);
  EXPECT_EQ(runs(trace.Take()), 0) << "switched off it only sleeps";
  g_on = true;
  lines.clear();
  EXPECT_TRUE(support::Eventually([&] { return runs(lines += trace.Take()) > 0; }));
  channel.Release();
  body.join();
  const std::string said = log.Take();
  EXPECT_EQ(support::Count(said, "Debug ActiveReport thread begin:"), 1);
  EXPECT_EQ(support::Count(said, "Info FpgaThread  exit."), 1);
  EXPECT_EQ(support::Count(said, "Debug ActiveReport thread exit."), 1);
}

// A socket in a network of this process's own, which has no "eth0" but lets a process talk to
// itself; -1 where the system lets nobody have one.
int SocketInOwnNetwork() {
  // Whoever may have one without becoming somebody else does; the other way takes a single thread.
  if (unshare(CLONE_NEWNET) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0) return -1;
  const int own = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  ifreq loopback{};
  std::strcpy(loopback.ifr_name, "lo");
  loopback.ifr_flags = IFF_UP;
  sockaddr_in to{};
  to.sin_family = AF_INET;
  to.sin_port = htons(58200);
  to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const bool up = ioctl(own, SIOCSIFFLAGS, &loopback) == 0 &&
                  connect(own, reinterpret_cast<const sockaddr*>(&to), sizeof to) == 0;
  return up ? own : -1;
}

void ReceiveReports(int sender) {
  device::Begin("none");
  device::Log log(0);
  Data buffer(kReportBuffer);
  Relaxed<bool> keepOn{true};
  RecvFpgaReportMsg(0, buffer.data(), keepOn);  // ends where there is no socket
  for (int again = 0; again < 2; ++again) {
    if (udp_port_init_sender() != 0) support::Complain("no socket; ");
  }
  const auto send = [sender](const Data& datagram) {
    if (::send(sender, datagram.data(), datagram.size(), 0) < 0) support::Complain("can't send; ");
  };
  send(inprocess::Bytes("01 0200 78563412 0200 a0b0 6802"));
  send(inprocess::Bytes("01 0200 78563412 0104 a0b0 6902"));
  send(inprocess::Bytes("01 0200 78563412 0200 a0b0 6902"));
  std::thread receiver([&] { RecvFpgaReportMsg(0, buffer.data(), keepOn); });
  std::string lines;
  support::Eventually(
      [&] { return (lines += log.Take()).find("Recvmsg length") != std::string::npos; });
  keepOn = false;
  send(Data(11));  // one more, that ends the wait
  receiver.join();
  lines += log.Take();
  if (lines != "Error Recvmsg checksum is invalid \nError Recvmsg length is invalid 1025\n") {
    support::Complain("logged: " + lines);
  }
}

TEST(ReportChannel, ReportsComeThroughTheSocketAndAreChecked) {
  constexpr int kNotAllowed = 77;
  const auto run = support::InChild([] {
    const int sender = SocketInOwnNetwork();
    if (sender < 0) _exit(kNotAllowed);
    ReceiveReports(sender);
  });
  if (run.status == kNotAllowed) GTEST_SKIP() << "no network of one's own on this system";
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.complaints, "");
}

}  // namespace
