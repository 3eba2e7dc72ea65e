// The client's commands about the device's own: identity, save, reload, mapping, test point.
#include <gtest/gtest.h>

#include "board/envstore.h"
#include "board/faults.h"
#include "board/files.h"
#include "support/board_kit.h"
#include "support/ctl.h"
#include "support/daemon.h"
#include "support/device.h"
#include "support/supervised.h"

namespace {

using support::Ctl;
using support::CtlJson;
using support::CtlOut;

TEST(CtlIdentity, IsSetShownAndOutlivesARestart) {
  board_kit::Configure("speed = 200\n");
  board::WriteEnv("device_modelid", "1a2b");
  std::optional<support::Daemon> daemon(support::Daemon::Options{.board = board_kit::Named()});
  ASSERT_TRUE(daemon->WaitUntilItAnswers());
  const auto first = CtlJson({"identity"});
  EXPECT_EQ(first.at("serial"), "13030d00ffffffff");
  EXPECT_EQ(first.at("serial_preset"), true);
  EXPECT_EQ(first.at("model"), "1a2b");
  EXPECT_EQ(first.at("mac"), nullptr);
  EXPECT_EQ(CtlOut({"identity", "set", "--serial", "13030D00000000AB"}),
            "serial number is 13030d00000000ab");
  EXPECT_EQ(CtlOut({"identity", "set", "--mac", "02-11-22-33-44-5F"}),
            "MAC address is 02:11:22:33:44:5f from the next boot on");
  CtlOut({"write", "0x7", "77", "78"});
  EXPECT_NE(CtlOut({"identity"}).find("device_modelid"), std::string::npos);
  daemon.reset();
  daemon.emplace(support::Daemon::Options{.board = board_kit::Named()});
  ASSERT_TRUE(daemon->WaitUntilItAnswers());
  const auto now = CtlJson({"identity"});
  EXPECT_EQ(now.at("serial"), "13030d00000000ab");
  EXPECT_EQ(now.at("mac"), "02:11:22:33:44:5f");
  EXPECT_EQ(board::ReadWhole(board_kit::Named() / "usr/brm100/bootenv"),
            "ethaddr=02:11:22:33:44:5f\n");
  EXPECT_EQ(device::Flash(0x1007, 2), "0004")
      << "what a client wrote there doesn't outlive a start";
}

TEST(CtlIdentity, RefusesWhatIsNone) {
  for (const char* words :
       {"set --serial 0000000000000000", "set --serial 13030d00", "set --serial 13030d00ffffffff0",
        "set --serial 13030d00fffffffg", "set --mac 00:00:00:00:00:00",
        "set --mac 03:11:22:33:44:55", "set --mac 02:11:22:33:44", "set --mac 021122334455",
        "set --mac 02:11:22:33:44:5g",
        "set --mac 02:11:22:33:44:55:", "set --mac 02:11:22:33:44:5"}) {
    support::ExpectCtl({words, "2"}, {"identity"});
  }
}

class CtlCommands : public testing::Test {
 protected:
  CtlCommands() { board_kit::Configure("speed = 200\nfpga.load_ms = 20\n"); }
  void SetUp() override {
    daemon_.emplace();
    ASSERT_TRUE(daemon_->AwaitReady());
  }
  std::optional<support::Supervised> daemon_;
};

TEST_F(CtlCommands, SaveStoresWhatOnlyMemoryHolds) {
  CtlOut({"write", "0x03000010", "a1", "a2"});
  CtlOut({"save"});
  EXPECT_EQ(device::Flash(0xA3C010, 2), "a1a2") << "stored when the command ends";
}

TEST_F(CtlCommands, ReloadTakesWhatIsStored) {
  CtlOut({"output", "open"});
  CtlOut({"write", "0x03000010", "a1", "a2"});
  CtlOut({"reload"});
  EXPECT_EQ(device::Fpga(0x600010, 2), "0000");
  EXPECT_EQ(device::Fpga(0x1DE, 1), "00");
}

TEST_F(CtlCommands, MappingIsWhatTheFirstCardSays) {
  EXPECT_EQ(CtlOut({"mapping", "on"}), "mapping is on, says the first card of port 0");
  EXPECT_EQ(CtlJson({"mapping", "off"}), (nlohmann::json{{"mapping", "off"}, {"port", 0}}));
  board::SetFaultCount(board::Fault::kCardRead, -1);
  const auto silent = Ctl({"mapping", "on"});
  EXPECT_EQ(silent.status, 1);
  EXPECT_NE(silent.err.find("the first card of port 0 doesn't answer"), std::string::npos);
  board_kit::RunTool("link 0 down");
  board_kit::RunTool("link 1 down");
  EXPECT_EQ(CtlJson({"mapping", "on"}).at("port"), nullptr);
}

TEST_F(CtlCommands, TestPointReadsItsCellBack) {
  EXPECT_EQ(CtlOut({"testpoint", "0x600100", "0x5A"}), "cell 0x00600100 reads 5a");
  EXPECT_EQ(device::Fpga(0x600100, 1), "5a");
  EXPECT_EQ(CtlOut({"testpoint", "0x1FFFFFF", "7"}), "cell 0x01FFFFFF reads 07");
  EXPECT_EQ(Ctl({"testpoint", "0x2000000", "1"}).status, 2);
  EXPECT_EQ(Ctl({"testpoint", "0x600100", "256"}).status, 2);
}

}  // namespace
