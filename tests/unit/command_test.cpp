// The command space and the factory reset: what each command sets off, and in which order a reset
// reads, patches and clears.
#include <gtest/gtest.h>

#include "board/envstore.h"
#include "board/faults.h"
#include "board/stores.h"
#include "process/tprocess.h"
#include "process/tprocess_ctl.h"
#include "support/board_kit.h"
#include "support/device.h"
#include "support/inprocess.h"
#include "support/loop.h"
#include "support/rows.h"
#include "support/trace.h"

namespace {

using namespace ZEPH_MCUC;
using board::Fault;
using board::SetFaultCount;
using device::Global;

constexpr std::uint32_t kCommand = 0x01000000;

TEST(Commands, SetOffWhatTheirRowSays) {
  device::Begin("fpga flash card shell");
  support::Trace trace;
  // Offset, data, ack, queued jobs, and the first line of what it reaches.
  for (const auto& row : support::Rows(5, R"(
      0   | 07aa         | 0 | 0
      1   | 01           | 0 | 1 | flash W 0xc20040
      3   | 0010005101   | 0 | 0 | fpga W 0x100051 01
      3   | 012000037fff | 0 | 0 | fpga W 0x1200003 7f
      3   | 00100051     | 4 | 0
      4   | 01           | 0 | 1 | flash R 0xa3b100 x512
      5   | 01           | 0 | 0
      6   | 01           | 4 | 0
      24  | 01           | 0 | 1 | card W 1 255 65535 0x01000088 1 0 05 0x038e
      24  | 0500         | 0 | 1 | card W 1 255 65535 0x01000088 1 0 05 0x038e
      24  | 02           | 0 | 1 | card W 1 255 65535 0x01000088 1 0 ff 0x0488
      32  | 01           | 0 | 0
      255 | 01           | 0 | 1 | flash W 0xc20040
    )")) {
    SCOPED_TRACE(row[0] + " " + row[1]);
    const auto address = kCommand + static_cast<std::uint32_t>(std::stoul(row[0]));
    const auto reply = inprocess::Write(address, inprocess::Bytes(row[1].c_str()));
    EXPECT_EQ(std::to_string(reply.m_ucAck), row[2]);
    EXPECT_EQ(std::to_string(inprocess::DrainQueue()), row[3]);
    const std::string lines = trace.Take();
    EXPECT_TRUE(row[4].empty() ? lines.empty() : lines.starts_with(row[4])) << lines;
    const auto read = inprocess::Read(address, 1);
    EXPECT_EQ(read.m_ucAck, row[0] == "6" ? 4 : 0);
    EXPECT_TRUE(read.m_data.empty());
  }
  EXPECT_EQ(Global().LocalAddr, 7);
}

TEST(Reset, WriteMarksTheEnvironmentTellsTheServiceAndQueues) {
  device::Begin("shell bus flash");
  support::Trace trace;
  EXPECT_EQ(inprocess::Write(kCommand + 2, inprocess::Bytes("02aa")).m_ucAck, 0);
  EXPECT_EQ(trace.TakeLine(),
            "shell envcfg set factory_enable 1; shell envcfg set returnfactory 1; "
            "shell envcfg set firstboot 1; shell killall moirad; owd 0x01000002 02");
  EXPECT_EQ(Global().RebootRF, EN_NOT_REBOOT);
  inprocess::Write(kCommand + 4, inprocess::Bytes("01"));
  EXPECT_EQ(inprocess::DrainQueue(), 2);
  EXPECT_EQ(trace.Take(), "") << "a reload behind it would forget it";
  EXPECT_EQ(Global().RebootRF, EN_REBOOT_WAIT_SFT_DO);
  EXPECT_EQ(Global().ResetMode, 2);
  EXPECT_FALSE(Global().ReceivePathSilent());
}

TEST(Reset, StepsWaitAndEndInTheReboot) {
  device::Begin("shell");
  board_kit::PutProgram("bin/reboot", "exit 0");
  platform::KeepTime();
  struct Step {
    std::uint8_t state;
    std::int64_t least_ms;
    std::uint8_t next;
    const char* ends;
  };
  constexpr Step kSteps[] = {
      {EN_REBOOT_WAIT_RET_PACK, 0, EN_REBOOT_WAIT_RET_PACK, ""},
      {EN_REBOOT_WAIT_SFT_DO, 1500, EN_REBOOT_ING, "shell sync\n"},
      {EN_REBOOT_ING, 5000, EN_REBOOT_ING, "shell fpga w s 0x1eb 0x0\nshell reboot -f\n"},
  };
  support::Trace trace;
  for (const Step& step : kSteps) {
    SCOPED_TRACE(int{step.state});
    Global().RebootRF = step.state;
    const std::int64_t begin = loop::BoardTime_us();
    Tprocess_ctl::getInstance()->RebootAfterRF();
    const std::int64_t passed_ms = (loop::BoardTime_us() - begin) / 1000;
    EXPECT_NEAR(passed_ms, step.least_ms + 50, 50);
    EXPECT_EQ(Global().RebootRF, step.next);
    const std::string lines = trace.Take();
    EXPECT_TRUE(lines.ends_with(step.ends)) << lines;
  }
  EXPECT_TRUE(Global().ReceivePathSilent());
}

constexpr char kCopied[] =
    R"(shell cp /usr/zeph/etc/envcfg/brmpara_factory /usr/zeph/etc/envcfg/brmpara_factory_tmp
shell rm -r /usr/brm100/bin/kye/bin/Configure/system.ini
shell rm -r /root/.config/Zephyrix/Cormoran.ini
fpga R 0x1d7 x1
card R 1 0 0 0x02000017 4 0 60008000 0x001e
flash R 0xd17000 x1
flash R 0xc20000 x8
flash R 0xc20008 x8
shell sync
card W 1 255 65535 0x02000001 1 0 99 0x039c
card W 1 255 65535 0x02000102 1 0 00 0x0305
card W 1 255 65535 0x02000101 1 0 01 0x0305
card W 1 255 65535 0x02000101 1 0 00 0x0304
card W 1 255 65535 0x02000100 1 0 00 0x0303
flash W tmp 0xc20000 6000000080000000
flash W tmp 0xd17000 00
flash W tmp 0xc20008 6000000080000000
flash W tmp 0xc20030 00010101
flash W tmp 0xb99016 010101
flash W tmp 0xb8b000 x4096
)";

constexpr char kReadDhcpAndFiles[] =
    "flash R 0x201a x1\nflash R 0x3000 x46080\nflash R 0xd14000 x768\nflash R 0xe00000 x1048576\n";
constexpr char kSetNetwork[] =
    "env set gatewayip 192.168.0.1\nenv set ipaddr 192.168.0.10\nnet mode 0\n"
    "net addr 192.168.0.10 255.255.255.0 192.168.0.1\n";
constexpr char kPutFiles[] =
    "flash W tmp 0x3000 x46080\nflash W tmp 0xd14000 x768\nflash W tmp 0xe00000 x1048576\n";
constexpr char kClosed[] = "shell envcfg set boot_screen 0\nshell sync\nfpga W 0x1de 00\n";

constexpr char kFolder[] = "usr/zeph/etc/owd/cabCfg/";
constexpr const char* kCardFiles[] = {"AllCabCfgFileName", "RvCfgFile_0.rcfgx",
                                      "RvCfgFile_31.rcfgx"};

// A device with something to lose, on a wall of cards of 96 by 128.
void BeginUsed(const std::string& traced) {
  device::Begin(traced, "card.width = 96\n");
  Global().GigaPhyLinkSta = 1;
  for (const char* file : kCardFiles) board_kit::Put(std::string(kFolder) + file, "x");
  board_kit::Put("usr/brm100/bin/kye/bin/Configure/system.ini", "");
  board_kit::Put("root/.config/Zephyrix/Cormoran.ini", "");
  device::PutFlash(0x201A, "01");
  device::PutFlash(0xD17000, "ff");
}

bool HasCardFiles() {
  int found = 0;
  for (const char* file : kCardFiles) {
    found += std::filesystem::exists(board_kit::Named() / kFolder / file) ? 1 : 0;
  }
  EXPECT_TRUE(found == 0 || found == static_cast<int>(std::size(kCardFiles)));
  return found != 0;
}

class ResetType : public testing::TestWithParam<int> {};

TEST_P(ResetType, ReadsPatchesAndClearsInOrder) {
  const int type = GetParam();
  const bool keepsDhcp = type == 0 || type == 2;
  BeginUsed("fpga flash card shell env net");
  support::Trace trace;
  EXPECT_EQ(Global().ReturnFactory(static_cast<std::uint8_t>(type)), 0);
  EXPECT_EQ(trace.Take(), std::string(keepsDhcp   ? kReadDhcpAndFiles
                                      : type == 1 ? kSetNetwork
                                                  : "") +
                              kCopied + "flash W tmp 0x201a " + (keepsDhcp ? "01\n" : "00\n") +
                              (type == 2 ? kPutFiles : "") + kClosed);
  EXPECT_EQ(Global().RebootRF, EN_REBOOT_ING);
  EXPECT_EQ(HasCardFiles(), type == 2);
  EXPECT_FALSE(std::filesystem::exists(board_kit::Named() / "root/.config/Zephyrix/Cormoran.ini"));
}

INSTANTIATE_TEST_SUITE_P(, ResetType, testing::Values(0, 1, 2, 3, 255),
                         [](const auto& test) { return std::to_string(test.param); });

TEST(Reset, NetworkSettingsFailOneByOne) {
  struct Case {
    Fault fault;
    int passing;
    int result;
    const char* log;
    int settings;  // calls that reached the network
  };
  constexpr Case kCases[] = {
      {Fault::kNet, 2, 0, "", 2},
      {Fault::kNet, 0, 0, "Error set static status:-1\n", 2},
      {Fault::kNet, 1, -1, "Error set curip error:-1\n", 2},
      {Fault::kEnvOpen, 0, -1, "Error === SetIPVersion ===Set IP, but openenv failed! \n", 0},
  };
  device::Begin("net");
  device::Log log(0);
  for (const Case& c : kCases) {
    SetFaultCount(Fault::kSkip, c.passing);
    SetFaultCount(c.fault, 1);
    support::Trace trace;
    EXPECT_EQ(Global().SetIPVersion(), c.result);
    EXPECT_EQ(log.Take(), c.log);
    EXPECT_EQ(support::Count(trace.Take(), "net "), c.settings);
    SetFaultCount(c.fault, 0);
    SetFaultCount(Fault::kSkip, 0);
  }
  EXPECT_EQ(board::ReadEnv("ipaddr"), "192.168.0.10");
}

}  // namespace
