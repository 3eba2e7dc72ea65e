// A factory reset from the client's write until the device is up again, undisturbed and with power
// cut at each of its writes.
#include <gtest/gtest.h>

#include <set>

#include "board/cells.h"
#include "board/envstore.h"
#include "board/faults.h"
#include "board/stores.h"
#include "proto/calc_reset.h"
#include "quivord/client.h"
#include "support/ctl.h"
#include "support/device.h"
#include "support/supervised.h"

namespace {

using namespace std::chrono_literals;
using board::Fault;
using board::SetFaultCount;
using support::CtlJson;
using support::CtlOut;
using ZEPH_MCUC::ResetRule;

constexpr char kSerial[] = "13030d0000000042";
constexpr char kFiles[] = "usr/zeph/etc/owd/cabCfg/";

// A byte of the store that tells whose content a region has.
struct Probe {
  const char* region;
  std::uint32_t address;
  const char* used;     // on a device in use
  const char* factory;  // from the factory; null where it isn't told
  bool kept = false;    // by a reset that keeps files
};

constexpr Probe kProbes[] = {
    {"scenes", 0x3000, "51", "ff", true},
    {"last scene", 0x3000 + 46079, "52", "ff", true},
    {"names of devices", 0xD14000, "53", "ff", true},
    {"last configuration file", 0xEFFFFF, "54", "ff", true},
    {"offset X", 0xA3B128, "64", "00"},
    {"position table", 0xA3CFFF, "55", "00"},
    {"brightness plans", 0xB8B000, "56", "00"},
    {"backup information", 0xB98000, "57", "ff"},
    {"HC parameters", 0xC21010, "58", "ff"},
    {"software table", 0xC30000, "59", "ff"},
    {"gamma tables", 0xD03000, "5b", "ff"},
};

// Puts the board into use, before the daemon runs.
void Use() {
  board_kit::Configure("speed = 200\nfpga.load_ms = 20\n");
  board::CreateStores();
  for (const Probe& probe : kProbes) device::PutFlash(probe.address, probe.used);
  device::PutFlash(0x201A, "01");
  board::WriteEnv("device_sn", kSerial);
  board_kit::Put("usr/brm100/bootenv", "ethaddr=02:11:22:33:44:55\n");
  board_kit::Put(std::string(kFiles) + "RvCfgFile_3.rcfgx", "x");
}

// "used", "reset", or which probe says otherwise than those before it.
std::string State(const ResetRule& rule) {
  std::string state;
  for (const Probe& probe : kProbes) {
    const std::string byte = device::Flash(probe.address, 1);
    if (rule.keepsFiles && probe.kept) {
      if (byte != probe.used) return std::string(probe.region) + " lost";
      continue;
    }
    const std::string says = byte == probe.used ? "used" : byte == probe.factory ? "reset" : byte;
    if (!state.empty() && state != says) return state + ", but " + probe.region + " " + says;
    state = says;
  }
  return state;
}

// What holds behind every reset, and behind every one that didn't happen.
void ExpectIdentity() {
  EXPECT_EQ(board::ReadEnv("device_sn"), kSerial);
  EXPECT_EQ(device::Flash(0x1016, 8), kSerial);
  EXPECT_EQ(board::ReadWhole(board_kit::Named() / "usr/brm100/bootenv"),
            "ethaddr=02:11:22:33:44:55\n");
  for (const char* key : {"firstboot", "returnfactory", "factory_enable"}) {
    EXPECT_EQ(board::ReadEnv(key), "0") << key;
  }
}

class ResetOfType : public testing::TestWithParam<int> {};

TEST_P(ResetOfType, ReachesTheFactoryStateAndKeepsWhatItsTypeKeeps) {
  const auto type = static_cast<std::uint8_t>(GetParam());
  const ResetRule& rule = ZEPH_MCUC::ResetRuleOf(type);
  Use();
  support::Supervised daemon;
  ASSERT_TRUE(daemon.AwaitReady());
  CtlOut({"output", "open"});
  daemon.Mark();
  const auto report = CtlJson({"reset", "--type", std::to_string(type), "--yes"});
  ASSERT_TRUE(daemon.AwaitReady(true)) << daemon.Said();
  EXPECT_EQ(report.value("as_meant", false), true) << report;
  EXPECT_EQ(report.value("serial", ""), kSerial);
  EXPECT_EQ(State(rule), "reset");
  ExpectIdentity();
  EXPECT_EQ(device::Flash(0x201A, 1), rule.keepsDhcp ? "01" : "00");
  EXPECT_EQ(std::filesystem::exists(board_kit::Named() / kFiles / "RvCfgFile_3.rcfgx"),
            rule.keepsFiles);
  EXPECT_EQ(board::ReadEnv("ipaddr").value_or("none"),
            rule.defaultNetwork ? "192.168.0.10" : "none");
  EXPECT_EQ(board::ReadEnv("boot_screen"), "0");
  EXPECT_EQ(device::Flash(0xB99016, 3), "010101");
  EXPECT_EQ(device::Flash(0xC20000, 16), "80000000800000008000000080000000");
  EXPECT_EQ(device::Fpga(0x24, 4), "80008000") << "a screen of one card";
  EXPECT_EQ(device::Fpga(0x1DE, 1), "00") << "closed";
}

INSTANTIATE_TEST_SUITE_P(, ResetOfType, testing::Values(0, 1, 2, 3, 200),
                         [](const auto& test) { return std::to_string(test.param); });

// Sends the write alone. Its answer may be lost: to the power cut, or to the reset, which drops all
// messages from its begin.
std::unique_ptr<quivord::Client> AskForReset(std::uint8_t type) {
  auto client = quivord::Client::Connect({.board = board_kit::Named(), .id = 0x7E0001});
  if (!client) return nullptr;
  static_cast<void>(client.value()->Call(
      {.operation = quivord::Operation::kWrite, .address = 0x01000002, .data = {type}}, 5s));
  return std::move(client.value());
}

// The restore that comes when the FPGA has loaded would forget it.
TEST(Reset, AskedForWhileTheFpgaLoadsIsCarriedOut) {
  Use();
  board_kit::Configure("speed = 200\nfpga.load_ms = 1500\n");
  support::Supervised daemon;
  daemon.Mark();
  while (AskForReset(0) == nullptr) std::this_thread::sleep_for(5ms);
  ASSERT_TRUE(daemon.AwaitReady(true)) << daemon.Said();
  EXPECT_EQ(State(ZEPH_MCUC::ResetRuleOf(0)), "reset");
  ExpectIdentity();
}

TEST(Reset, DropsMessagesFromItsBeginUntilTheReboot) {
  Use();
  board_kit::Configure("speed = 10\nfpga.load_ms = 20\n");
  support::Supervised daemon;
  ASSERT_TRUE(daemon.AwaitReady());
  const auto client = AskForReset(0);
  ASSERT_NE(client, nullptr);
  std::string answers;  // a answered, s silent; each only where it differs from the one before
  while (true) {
    const auto reply = client->Call({.address = 0x10000, .length = 1}, 100ms);
    if (!reply && reply.error().trouble == quivord::Trouble::kDisconnected) break;
    const char answer = reply ? 'a' : 's';
    if (answers.empty() || answers.back() != answer) answers += answer;
    std::this_thread::sleep_for(2ms);
  }
  EXPECT_EQ(answers, "as");
  EXPECT_NE(daemon.Said().find("Device Reset To Factory ing"), std::string::npos);
}

TEST(Reset, IsNotBegunUnlessConfirmed) {
  Use();
  support::Supervised daemon;
  ASSERT_TRUE(daemon.AwaitReady());
  for (const char* words : {"reset --type 0", "--json reset --type 0", "reset --type some --yes"}) {
    support::ExpectCtl({words, "2"});  // nobody types yes
  }
  EXPECT_EQ(board::ReadEnv("returnfactory").value_or("none"), "none");
}

class ResetCuts : public testing::TestWithParam<int> {
 protected:
  ResetCuts() {
    Use();
    board_kit::Configure("speed = 2000\nfpga.load_ms = 5\n");
  }

  static std::filesystem::path Live() { return board::StorePath(board::Store::kLive); }

  // The board in use again, as far as a reset may have changed it; the daemon idles meanwhile.
  void PutBack() const {
    std::filesystem::copy_file(saved_, Live(), std::filesystem::copy_options::overwrite_existing);
    board_kit::Put(std::string(kFiles) + "RvCfgFile_3.rcfgx", "x");
  }

  void Save() const {
    std::filesystem::copy_file(Live(), saved_, std::filesystem::copy_options::overwrite_existing);
  }

  const std::filesystem::path saved_ = board_kit::Named() / "saved";
};

bool SweepsAll() {
  const char* const wanted = std::getenv("QUIVORD_SWEEP");
  return wanted != nullptr && std::string(wanted) == "all";
}

// Which writes are cut in a usual run, and with which seeds of lost ones: by turns without any and
// with some. QUIVORD_SWEEP=all cuts every one of them both ways.
bool IsCut(int write, bool keepsFiles) {
  if (SweepsAll()) return true;
  return keepsFiles ? write <= 10 || write % 5 == 0 : write % 4 == 3;
}

std::vector<int> SeedsOfLoss(int write) {
  if (SweepsAll()) return {0, write, write + 100};
  return {write / 4 % 2 == 0 ? 0 : write};
}

TEST_P(ResetCuts, LeaveADeviceAsBeforeOrReset) {
  constexpr int kMostWrites = 100;
  const auto type = static_cast<std::uint8_t>(GetParam());
  const ResetRule& rule = ZEPH_MCUC::ResetRuleOf(type);
  const int prepared = rule.keepsFiles ? 10 : 7;  // writes to the copy
  support::Supervised daemon;
  ASSERT_TRUE(daemon.AwaitReady());
  Save();
  std::set<std::string> seen;
  for (int write = 1; write < kMostWrites; ++write) {
    if (!IsCut(write, rule.keepsFiles)) continue;
    for (const int seed : SeedsOfLoss(write)) {
      SCOPED_TRACE("cut at write " + std::to_string(write) + ", loss " + std::to_string(seed));
      PutBack();
      ASSERT_EQ(State(rule), "used");
      daemon.Mark();
      SetFaultCount(Fault::kFlashLoss, seed);
      SetFaultCount(Fault::kFlashCut, write);
      ASSERT_NE(AskForReset(type), nullptr);
      ASSERT_TRUE(daemon.AwaitReady(true)) << daemon.Said();
      const std::string state = State(rule);
      seen.insert(state);
      EXPECT_EQ(state, write <= prepared ? "used" : "reset");
      EXPECT_TRUE(state == "reset" ||
                  std::filesystem::exists(board_kit::Named() / kFiles / "RvCfgFile_3.rcfgx"));
      ExpectIdentity();
    }
    RecordProperty("writes", write);
    if (board::FaultCount(Fault::kFlashCut) > 0) break;  // it got through
  }
  SetFaultCount(Fault::kFlashCut, 0);
  EXPECT_EQ(seen, (std::set<std::string>{"reset", "used"}));
}

INSTANTIATE_TEST_SUITE_P(, ResetCuts, testing::Values(0, 1, 2, 3),
                         [](const auto& test) { return std::to_string(test.param); });

}  // namespace
