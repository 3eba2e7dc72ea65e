// The start sequence on boards that lack something.
#include <gtest/gtest.h>

#include "driverutil.h"
#include "process/tprocess_ctl.h"
#include "proto/data_common.h"
#include "proto/tshl_ctl.h"
#include "stub/stubutil.h"
#include "support/board_kit.h"

namespace {

using namespace ZEPH_MCUC;
using board::Fault;
using board::SetFaultCount;

constexpr char kStore[] = "usr/zeph/etc/envcfg/env";

std::string Stored() {
  std::ifstream file(board_kit::Named() / kStore);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Startup, VersionOfTheRootFileSystemBecomesTheDaemons) {
  struct Case {
    const char* name;
    const char* before;
    int opensThatPass, opensThatFail;
    int result;
    const char* after;
  };
  constexpr Case kCases[] = {
      {"set", "ver_rootfs=V2.3\n", 0, 0, 0, "ver_rootfs=V2.3\nver_quivord=V2.3\n"},
      {"unset", "", 0, 0, 0, "ver_quivord=V1.0.B1\n"},
      {"store can't be opened", "ver_rootfs=V2.3\n", 0, -1, -1, "ver_rootfs=V2.3\n"},
      {"only the second time it can't", "ver_rootfs=V2.3\n", 1, 1, 0,
       "ver_rootfs=V2.3\nver_quivord=V2.3\n"},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.name);
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

TEST(Startup, FirstRestoreFillsTheImageAndLeavesTheFpgaAlone) {
  board_kit::Configure("speed = 2000\ntrace = fpga flash env\n");
  DriverUtil::getInstance()->initialize();
  const uint8_t value = 0x77;
  ASSERT_EQ(DriverUtil::getInstance()->WriteDataToFlash(0xA3B100 + 0x45, 1, &value), 0);
  Tprocess_ctl::getInstance()->initialize();
  Tshl_ctl::getInstance()->initialize();
  EXPECT_TRUE(StubUtil::getInstance()->initialize());
  EXPECT_EQ(Data_Global::getInstance()->SendParameterReg[0x45], 0x77);
  std::size_t lastRead = 0;
  std::size_t version = 0;
  const auto lines = board_kit::TraceLines();
  for (std::size_t i = 0; i < lines.size(); ++i) {
    // Behind the version the threads start, and one of them writes the report settings.
    if (version == 0) {
      EXPECT_FALSE(lines[i].starts_with("fpga W")) << lines[i];
    }
    if (lines[i].starts_with("flash R")) lastRead = i;
    if (lines[i] == "env set ver_quivord V1.0.B1") version = i;
  }
  EXPECT_LT(lastRead, version);
  EXPECT_GT(version, 0U);
}

}  // namespace
