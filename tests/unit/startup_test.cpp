// The start sequence on boards that lack something.
#include <gtest/gtest.h>

#include <algorithm>

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
  const auto lines = board_kit::TraceLines();
  const auto version = std::find(lines.begin(), lines.end(), "env set ver_quivord V1.0.B1");
  ASSERT_NE(version, lines.end());
  const auto of = [](const char* kind) {
    return [=](const std::string& line) { return line.starts_with(kind); };
  };
  EXPECT_TRUE(std::none_of(lines.begin(), version, of("fpga")));
  EXPECT_TRUE(std::any_of(lines.begin(), version, of("flash R live 0x00a3b100 512 ok")));
  EXPECT_TRUE(std::none_of(version, lines.end(), of("flash R")));
}

}  // namespace
