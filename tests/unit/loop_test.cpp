// The polling loop: its steps and their order, the service daemon coming late, the debounced
// calculation, a factory reset, and the size of cards behind a link that changed.
#include <gtest/gtest.h>

#include "board/faults.h"
#include "process/tprocess_ctl.h"
#include "stub/mcuqmbthread.h"
#include "support/device.h"
#include "support/trace.h"

namespace {

using namespace ZEPH_MCUC;
using device::Global;

std::string Pass(support::Trace& trace) {
  McuQMBThread::PollingPass();
  return trace.Take();
}

// One pass without a change.
constexpr char kQuietPass[] = R"(fpga R 0x18 x4
fpga R 0x98 x4
fpga R 0x100 x4
fpga R 0x1e x1
fpga R 0x9e x1
fpga R 0x120 x1
fpga R 0x121 x1
fpga R 0x1f6 x6
fpga R 0x1f x1
fpga R 0x9f x1
fpga R 0x126 x1
fpga R 0x127 x1
fpga R 0x1d7 x1
fpga R 0x1f2 x4
fpga R 0x1da x1
fpga R 0x1e0 x2
fpga R 0x1da x1
fpga R 0x1d7 x1
)";

constexpr char kNoCards[] = "port.0.cards = 0\nport.0.multi = 0\nport.1.cards = 0\n";

TEST(Loop, PollsInThisOrder) {
  device::Begin("fpga flash bus card", kNoCards);
  support::Trace trace;
  Pass(trace);  // the first one reads the brightness plans as well
  EXPECT_EQ(Pass(trace), kQuietPass);
}

TEST(Loop, FactoryResetStopsAllPolling) {
  // The stand-in ends whoever holds the board, which is nobody here, and has a line of its own.
  constexpr char kReboot[] = "shell fpga w s 0x1eb 0x0\nshell reboot -f\nshell reboot -f\n";
  device::Begin("fpga bus shell", kNoCards);
  for (const auto& [state, expected] :
       {std::pair{EN_REBOOT_WAIT_RET_PACK, ""}, {EN_REBOOT_ING, kReboot}}) {
    Global().RebootRF = state;
    support::Trace trace;
    EXPECT_EQ(Pass(trace), expected);
  }
}

TEST(Loop, ServiceDaemonThatComesLateGetsAllOnce) {
  constexpr char kAfresh[] = R"(owd 0x0200001e 05
owd 0x0200009e 00
owd 0x02000120 0000
owd 0x020001f6 00
owd 0x020001f7 00
owd 0x020001f8 00
owd 0x020001f9 00
owd 0x020001fa 00
owd 0x020001fb 09
owd 0x0200001f 01
owd 0x0200009f 00
owd 0x02000126 0000
owd 0x020001d7 00
owd 0x020001f2 01
owd 0x020001f3 00
owd 0x020001da 02
owd 0x020001e0 00
owd 0x020001e1 01
owd 0x020001da 02
)";
  device::Begin("bus", kNoCards);
  device::PutFpga(0x1E, "05");
  device::PutFpga(0x1F, "01");
  device::PutFpga(0x98, "80");
  device::PutFpga(0x1DA, "02");
  device::PutFpga(0x1E0, "0001");
  device::PutFpga(0x1F2, "01000000");
  device::PutFpga(0x1FB, "09");
  support::Trace trace;
  EXPECT_EQ(support::Count(Pass(trace), "owd 0x02000098 80000000"), 1) << "sent, and lost";
  EXPECT_EQ(Pass(trace), "");
  const auto owd = device::ConnectOwd();
  trace.Take();
  EXPECT_EQ(Pass(trace), kAfresh) << "all but the roles, whose cache stays";
  EXPECT_TRUE(Tprocess_ctl::mbus_connect_status());
  EXPECT_EQ(Pass(trace), "");
  device::WriteFeature(0x1DF, "01");
  trace.Take();
  EXPECT_EQ(Pass(trace), kAfresh) << "a client asked for it";
  EXPECT_FALSE(Tprocess_ctl::OptToNetEnableOnce());
  EXPECT_EQ(Pass(trace), "");
}

TEST(Loop, CalculatesOnceABurstIsOver) {
  struct Case {
    std::uint32_t count;  // of configurations, in front of the pass
    bool calculates;
  };
  // The count seen last stays: the same count, when it comes again straight away, counts as quiet.
  constexpr Case kCases[] = {{0, false}, {1, false}, {3, false}, {3, true},
                             {0, false}, {3, true},  {1, false}, {1, true}};
  device::Begin("flash", kNoCards);
  support::Trace trace;
  int at = 0;
  for (const Case& c : kCases) {
    if (c.count != 0) Global().CalculateParaHandlerCnt = c.count;
    const bool calculated = support::Count(Pass(trace), "flash R 0xb99000 x28") == 1;
    EXPECT_EQ(calculated, c.calculates) << at;
    EXPECT_EQ(Global().CalculateParaHandlerCnt, calculated ? 0 : c.count) << at;
    ++at;
  }
}

TEST(Loop, CardSizeIsAskedForSomePassesAfterALinkChanged) {
  struct Case {
    const char* name;
    bool connected;
    std::uint16_t links;
    int failures;  // of card reads
    int asked;     // card reads within 40 passes
    int firstAsked;
    int lastBusy;  // the last pass with the counter above 0
    bool reported;
  };
  constexpr Case kCases[] = {
      {"answers at once", true, 1, 0, 1, 4, 3, true},
      {"answers the third time", true, 1, 2, 3, 4, 5, true},
      {"never answers", true, 1, -1, 27, 4, 29, false},
      {"no link", true, 0, 0, 0, 0, 9, false},
      {"no service daemon", false, 1, 0, 0, 0, 9, false},
  };
  device::Begin("card bus");
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.name);
    Global().mbus_connect_status = c.connected;
    Global().GigaPhyLinkSta = c.links;
    Global().LinkStateChanged = 1;
    board::SetFaultCount(board::Fault::kCardRead, c.failures);
    int asked = 0;
    int firstAsked = 0;
    int lastBusy = 0;
    std::string reports;
    support::Trace trace;
    for (int pass = 1; pass <= 40; ++pass) {
      Tprocess_ctl::getInstance()->SendRecvCardParaToOwdByLinkChange();
      const std::string lines = trace.Take();
      const int reads = support::Count(lines, "card R");
      if (reads > 0 && firstAsked == 0) firstAsked = pass;
      asked += reads;
      if (Global().LinkStateChanged != 0) lastBusy = pass;
      if (support::Count(lines, "owd") > 0) reports += lines.substr(lines.find("owd"));
    }
    EXPECT_EQ(asked, c.asked);
    EXPECT_EQ(firstAsked, c.firstAsked);
    EXPECT_EQ(lastBusy, c.lastBusy);
    EXPECT_EQ(reports, c.reported ? "owd 0x02100006 80008000\n" : "");
    board::SetFaultCount(board::Fault::kCardRead, 0);
  }
}

}  // namespace
