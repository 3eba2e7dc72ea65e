// Reports to the service daemon: each status that changed, once, and afresh when it is asked.
#include <gtest/gtest.h>

#include "board/faults.h"
#include "process/tprocess_ctl.h"
#include "stub/mcuqmbthread.h"
#include "support/device.h"
#include "support/trace.h"

namespace {

using namespace ZEPH_MCUC;
using board::Fault;
using board::SetFaultCount;
using device::Global;

using Step = void (*)();

template <void (Tprocess_ctl::*Operation)()>
void Detect() {
  (Tprocess_ctl::getInstance()->*Operation)();
}

struct Status {
  const char* name;
  Step detect;
  std::uint32_t address;  // of the cells that change
  const char* value;
  const char* reads;    // on every pass
  const char* reports;  // on a change, with the reads that they need
  int linkChanged = 0;
};

constexpr char kRoles[] = "fpga R 0x18 x4\nfpga R 0x98 x4\nfpga R 0x100 x4\n";
constexpr char kRedundancy[] = "fpga R 0x1e x1\nfpga R 0x9e x1\nfpga R 0x120 x1\nfpga R 0x121 x1\n";
constexpr char kLinks[] = "fpga R 0x1f x1\nfpga R 0x9f x1\nfpga R 0x126 x1\nfpga R 0x127 x1\n";

const Status kStatus[] = {
    {"roles", [] { Global().SendRedundStatustoOWD(); }, 0x98, "00800000", kRoles,
     "owd 0x02000018 00000000\nowd 0x02000098 00800000\nowd 0x02000100 00000000\n"},
    {"links", Detect<&Tprocess_ctl::SendNetLinktoOWD>, 0x126, "0305", kLinks,
     "fpga R 0x1f x1\nowd 0x0200001f 00\nfpga R 0x9f x1\nowd 0x0200009f 00\n"
     "fpga R 0x126 x2\nowd 0x02000126 0305\n",
     1},
    {"fiber", Detect<&Tprocess_ctl::SendFiberLinktoOWD>, 0x1D7, "a1", "fpga R 0x1d7 x1\n",
     "fpga R 0x1d7 x1\nowd 0x020001d7 a1\n"},
    {"genlock", Detect<&Tprocess_ctl::SendGenLockLinktoOWD>, 0x1D7, "a2", "fpga R 0x1d7 x1\n",
     "fpga R 0x1d7 x1\nowd 0x020001d7 a2\n"},
    {"links below fiber 1", Detect<&Tprocess_ctl::SendFiberBelowLinkStatustoOWD>, 0x1F2, "0100",
     "fpga R 0x1f2 x4\n", "owd 0x020001f2 01\nowd 0x020001f3 00\n", 1},
    {"links below fiber 2", Detect<&Tprocess_ctl::SendFiberBelowLinkStatustoOWD>, 0x1F4, "0080",
     "fpga R 0x1f2 x4\n", "owd 0x020001f4 00\nowd 0x020001f5 80\n", 1},
    {"fiber redundancy", Detect<&Tprocess_ctl::SendFiberRedundtoOWD>, 0x1DA, "01",
     "fpga R 0x1da x1\n", "owd 0x020001da 01\n"},
    {"fiber copy", Detect<&Tprocess_ctl::SendFiberCopyStatustoOWD>, 0x1DA, "01",
     "fpga R 0x1da x1\n", "owd 0x020001da 01\n"},
    {"fiber to net", Detect<&Tprocess_ctl::SendFiberToNetStatustoOWD>, 0x1E0, "0001",
     "fpga R 0x1e0 x2\n", "owd 0x020001e0 00\nowd 0x020001e1 01\n"},
};

TEST(Reports, EachChangeGoesOutOnce) {
  device::Begin("fpga bus", "port.0.cards = 0\nport.0.multi = 0\nport.1.cards = 0\n");
  support::Trace trace;
  for (const Status& status : kStatus) {
    SCOPED_TRACE(status.name);
    if (status.address != 0x1D7) {  // the two of one cache follow each other
      device::PutFpga(status.address, "00");
      status.detect();
      EXPECT_EQ(trace.Take(), status.reads) << "0 is what a peer assumes";
    }
    Global().LinkStateChanged = 0;
    device::PutFpga(status.address, status.value);
    trace.Take();
    status.detect();
    EXPECT_EQ(trace.Take(), std::string(status.reads) + status.reports);
    EXPECT_EQ(Global().LinkStateChanged, status.linkChanged);
    status.detect();
    EXPECT_EQ(trace.Take(), status.reads);
  }
  EXPECT_EQ(Global().GigaPhyLinkSta, 0x5300);
}

TEST(Reports, RedundancyAndPortGroups) {
  constexpr char kOfPorts[] =
      "fpga R 0x1e x1\nowd 0x0200001e 00\nfpga R 0x9e x1\nowd 0x0200009e 00\n"
      "fpga R 0x120 x2\nowd 0x02000120 0002\n";
  constexpr char kOfGroups[] =
      "owd 0x020001f6 00\nowd 0x020001f7 00\nowd 0x020001f8 07\nowd 0x020001f9 00\n"
      "owd 0x020001fa 00\nowd 0x020001fb 00\n";
  const std::string groups = "fpga R 0x1f6 x6\n";
  device::Begin("fpga bus");
  support::Trace trace;
  const auto detect = [&] {
    Tprocess_ctl::getInstance()->SendRedundtoOWD();
    return trace.Take();
  };
  EXPECT_EQ(detect(), kRedundancy + groups);
  device::PutFpga(0x121, "02");
  EXPECT_EQ(detect(), std::string(kRedundancy) + kOfPorts + groups);
  device::PutFpga(0x1F8, "07");
  EXPECT_EQ(detect(), kRedundancy + groups + kOfGroups);
  EXPECT_EQ(detect(), kRedundancy + groups);
}

// What the cache holds counts, not what a peer got.
TEST(Reports, LostReportIsNotRepeatedAndAFailedReadCountsAsZero) {
  device::Begin("bus");
  device::PutFpga(0x1E0, "0001");
  SetFaultCount(Fault::kBusSend, -1);
  support::Trace trace;
  Detect<&Tprocess_ctl::SendFiberToNetStatustoOWD>();
  SetFaultCount(Fault::kBusSend, 0);
  trace.Take();
  Detect<&Tprocess_ctl::SendFiberToNetStatustoOWD>();
  EXPECT_EQ(trace.Take(), "");
  SetFaultCount(Fault::kFpgaRead, 3);
  Detect<&Tprocess_ctl::SendFiberToNetStatustoOWD>();
  EXPECT_EQ(trace.Take(), "owd 0x020001e0 00\nowd 0x020001e1 00\n");
}

TEST(Reports, SingleFramesNameTheirRegister) {
  struct Case {
    void (*send)();
    const char* line;
  };
  constexpr Case kCases[] = {
      {[] { Global().SendFlag_quivordload(); }, "owd 0x14000000 02\n"},
      {[] {
         const std::uint8_t mode = 3;
         Global().SendRebootMsgtoOWD(&mode, 1);
       },
       "owd 0x01000002 03\n"},
      {[] {
         Global().ReceiveCardWidth = 0x0160;
         Global().ReceiveCardHeight = 0x90;
         Global().SendRVCardWHtoOWD();
       },
       "owd 0x02100006 60019000\n"},
      {[] { Global().SendCardSizetoKye(); }, "kye 0x02100006 60019000\n"},
      {[] { Global().SendTimetoKye(); }, "kye 0x13000300 180303043b3b01\n"},
      {[] { Global().SendC8toKye(); }, "kye 0x02810000 c8\n"},
      {Detect<&Tprocess_ctl::SendBandWidthInfo>, "owd 0x02810008 ffff\n"},
      {Detect<&Tprocess_ctl::Send9DtoOWD>, "owd 0x0200009d 5a\n"},
      {Detect<&Tprocess_ctl::SendFiberRedundInfo>, "owd 0x020001d7 a0\n"},
      {[] { Global().SendMStoOWD9_16(); }, "owd 0x02000100 0102030405060708\n"},
  };
  device::Begin("bus");
  device::PutFpga(0x100, "0102030405060708");
  device::PutFpga(0x9D, "5a");
  device::PutFpga(0x1D7, "a0");
  device::SetClock(device::kSunday);
  support::Trace trace;
  for (const Case& c : kCases) {
    c.send();
    EXPECT_EQ(trace.Take(), c.line);
  }
  EXPECT_EQ(device::Image(0x100, 8), "0102030405060708") << "roles go into the image as well";
}

}  // namespace
