// The start sequence on boards that lack something.
#include <gtest/gtest.h>

#include "board/files.h"
#include "driverutil.h"
#include "process/tprocess_ctl.h"
#include "proto/tshl_ctl.h"
#include "stub/stubutil.h"
#include "support/board_kit.h"

namespace {

using namespace ZEPH_MCUC;
using board::Fault;
using board::SetFaultCount;

constexpr char kStore[] = "usr/zeph/etc/envcfg/env";

std::string Stored() { return board::ReadWhole(board_kit::Named() / kStore).value_or("none"); }

TEST(Startup, VersionOfTheRootFileSystemBecomesTheDaemons) {
  struct Case {
    const char* before;
    int opensThatPass, opensThatFail;
    int result;
    const char* after;
  };
  constexpr Case kCases[] = {
      {"ver_rootfs=V2.3\n", 0, 0, 0, "ver_rootfs=V2.3\nver_quivord=V2.3\n"},
      {"", 0, 0, 0, "ver_quivord=V1.0.B1\n"},
      {"ver_rootfs=V2.3\n", 0, -1, -1, "ver_rootfs=V2.3\n"},
      {"ver_rootfs=V2.3\n", 1, 1, 0, "ver_rootfs=V2.3\nver_quivord=V2.3\n"},
  };
  for (const Case& c : kCases) {
    board::Folder();
    board_kit::Put(kStore, c.before);
    SetFaultCount(Fault::kSkip, c.opensThatPass);
    SetFaultCount(Fault::kEnvOpen, c.opensThatFail);
    EXPECT_EQ(StubUtil::getInstance()->SetEnvQuivordVerToRootfs(), c.result);
    EXPECT_EQ(Stored(), c.after);
  }
}

// Nothing that the hardware refuses keeps the daemon from coming up, and the queue takes a block
// while the start still goes on.
TEST(Startup, GoesOnWithoutStoresAndFpga) {
  board_kit::Configure("speed = 2000\n");
  for (const Fault fault :
       {Fault::kEnvOpen, Fault::kFlashRead, Fault::kFpgaRead, Fault::kFpgaWrite, Fault::kBusSend}) {
    SetFaultCount(fault, -1);
  }
  DriverUtil::getInstance()->initialize();
  Tprocess_ctl::getInstance()->initialize();
  Tshl_ctl::getInstance()->initialize();
  EXPECT_TRUE(StubUtil::getInstance()->initialize());
  EXPECT_EQ(Stored(), "");
}

}  // namespace
