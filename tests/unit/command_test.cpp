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
#include "support/trace.h"

namespace {

using namespace ZEPH_MCUC;
using board::Fault;
using board::SetFaultCount;
using device::Global;

constexpr std::uint32_t kCommand = 0x01000000;

// --- Commands ----------------------------------------------------------------------------------

struct Command {
  const char* name;
  std::uint32_t offset;
  const char* data;
  int ack;
  int jobs;
  const char* first;  // line of what it sets off; empty for none
};

constexpr Command kCommands[] = {
    {"sort", 0, "07aa", 0, 0, ""},
    {"save", 1, "01", 0, 1, "flash W 0xc20040 "},
    {"test point", 3, "0010005101", 0, 0, "fpga W 0x100051 01\n"},
    {"test point, all address bytes", 3, "01200003 7f ff", 0, 0, "fpga W 0x1200003 7f\n"},
    {"test point, four bytes", 3, "00100051", 4, 0, ""},
    {"reload", 4, "01", 0, 1, "flash R 0xa3b100 x512\n"},
    {"chip erase", 5, "01", 0, 0, ""},
    {"no such row", 6, "01", 4, 0, ""},
    {"mapping", 24, "01", 0, 1, "card W 1 255 65535 0x01000088 1 0 05 0x038e\n"},
    {"mapping by the card's own value", 24, "0500", 0, 1,
     "card W 1 255 65535 0x01000088 1 0 05 0x038e\n"},
    {"mapping off", 24, "02", 0, 1, "card W 1 255 65535 0x01000088 1 0 ff 0x0488\n"},
    {"debug", 32, "01", 0, 0, ""},
    {"save under its other number", 255, "01", 0, 1, "flash W 0xc20040 "},
};

TEST(Commands, SetOffWhatTheirRowSays) {
  device::Begin("fpga flash card shell");
  support::Trace trace;
  for (const Command& command : kCommands) {
    SCOPED_TRACE(command.name);
    const auto reply = inprocess::Write(kCommand + command.offset, inprocess::Bytes(command.data));
    EXPECT_EQ(reply.m_ucAck, command.ack);
    EXPECT_EQ(inprocess::DrainQueue(), command.jobs);
    const std::string lines = trace.Take();
    EXPECT_TRUE(*command.first == '\0' ? lines.empty() : lines.starts_with(command.first)) << lines;
    const auto read = inprocess::Read(kCommand + command.offset, 1);
    EXPECT_EQ(read.m_ucAck, command.offset == 6 ? 4 : 0);
    EXPECT_TRUE(read.m_data.empty());
  }
  EXPECT_EQ(Global().LocalAddr, 7);
}

TEST(Commands, FailedTestPointIsLogged) {
  device::Begin("none");
  device::Log log(0);
  SetFaultCount(Fault::kFpgaWrite, 3);
  EXPECT_EQ(inprocess::Write(kCommand + 3, inprocess::Bytes("0010005101")).m_ucAck, 0);
  EXPECT_NE(
      log.Take().find("=== WriteTestPointCommand ===write to page program failed. driverRet = "),
      std::string::npos);
}

// --- A reset from the write to the reboot -----------------------------------------------------

TEST(Reset, WriteMarksTheEnvironmentTellsTheServiceAndQueues) {
  device::Begin("shell bus");
  support::Trace trace;
  const auto byte = inprocess::Bytes("02aa");
  EXPECT_EQ(inprocess::Write(kCommand + 2, byte).m_ucAck, 0);
  EXPECT_EQ(trace.Take(),
            "shell envcfg set factory_enable 1\n"
            "shell envcfg set returnfactory 1\n"
            "shell envcfg set firstboot 1\n"
            "shell killall moirad\n"
            "owd 0x01000002 02\n");
  EXPECT_EQ(Global().RebootRF, EN_NOT_REBOOT);
  EXPECT_EQ(inprocess::DrainQueue(), 1);
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
    std::int64_t least_ms, most_ms;
    std::uint8_t next;
    const char* ends;
  };
  constexpr Step kSteps[] = {
      {EN_NOT_REBOOT, 0, 0, EN_NOT_REBOOT, ""},
      {EN_REBOOT_WAIT_RET_PACK, 0, 0, EN_REBOOT_WAIT_RET_PACK, ""},
      {EN_REBOOT_WAIT_SFT_DO, 1500, 1600, EN_REBOOT_ING, "shell sync\n"},
      {EN_REBOOT_ING, 5000, 5000, EN_REBOOT_ING, "shell fpga w s 0x1eb 0x0\nshell reboot -f\n"},
  };
  support::Trace trace;
  for (const Step& step : kSteps) {
    SCOPED_TRACE(int{step.state});
    Global().RebootRF = step.state;
    const std::int64_t begin = loop::BoardTime_us();
    Tprocess_ctl::getInstance()->RebootAfterRF();
    const std::int64_t passed_ms = (loop::BoardTime_us() - begin) / 1000;
    EXPECT_GE(passed_ms, step.least_ms);
    EXPECT_LE(passed_ms, step.most_ms);
    EXPECT_EQ(Global().RebootRF, step.next);
    const std::string lines = trace.Take();
    EXPECT_TRUE(lines.ends_with(step.ends)) << lines;
  }
  EXPECT_TRUE(Global().ReceivePathSilent());
}

// --- The copy that becomes the store ----------------------------------------------------------

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

constexpr char kReadDhcpAndFiles[] = R"(flash R 0x201a x1
flash R 0x3000 x46080
flash R 0xd14000 x768
flash R 0xe00000 x1048576
)";

constexpr char kSetNetwork[] = R"(env set gatewayip 192.168.0.1
env set ipaddr 192.168.0.10
net mode 0
net addr 192.168.0.10 255.255.255.0 192.168.0.1
)";

constexpr char kPutFiles[] = R"(flash W tmp 0x3000 x46080
flash W tmp 0xd14000 x768
flash W tmp 0xe00000 x1048576
)";

constexpr char kClosed[] = R"(shell envcfg set boot_screen 0
shell sync
fpga W 0x1de 00
)";

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
  device::PutFlash(0x3000 + 46079, "51");
  device::PutFlash(0xD14000 + 767, "52");
  device::PutFlash(0xE00000 + 0xFFFFF, "53");
  device::PutFlash(0xB8B000, "54");
  device::PutFlash(0xA3B100 + 0x28, "55");
}

std::string Copy(std::uint32_t address, std::size_t length) {
  std::ifstream store(board::StorePath(board::Store::kTmp), std::ios::binary);
  store.seekg(address);
  std::string bytes(length, '\0');
  store.read(bytes.data(), static_cast<std::streamsize>(length));
  return board::Hex(bytes.data(), length);
}

bool HasCardFiles() {
  int found = 0;
  for (const char* file : kCardFiles) {
    found += std::filesystem::exists(board_kit::Named() / kFolder / file) ? 1 : 0;
  }
  EXPECT_TRUE(found == 0 || found == static_cast<int>(std::size(kCardFiles)));
  return found != 0;
}

struct Type {
  int type;
  const char* reads;
  const char* dhcp;
  bool keeps;
};
class ResetType : public testing::TestWithParam<Type> {};

TEST_P(ResetType, ReadsPatchesAndClearsInOrder) {
  const Type& type = GetParam();
  BeginUsed("fpga flash card shell env net");
  support::Trace trace;
  EXPECT_EQ(Global().ReturnFactory(static_cast<std::uint8_t>(type.type)), 0);
  EXPECT_EQ(trace.Take(), std::string(type.reads) + kCopied + "flash W tmp 0x201a " + type.dhcp +
                              "\n" + (type.keeps ? kPutFiles : "") + kClosed);
  EXPECT_EQ(Global().RebootRF, EN_REBOOT_ING);
  EXPECT_EQ(HasCardFiles(), type.keeps);
  const char* const unwritten = "ff";
  EXPECT_EQ(Copy(0x3000 + 46079, 1), type.keeps ? "51" : unwritten);
  EXPECT_EQ(Copy(0xD14000 + 767, 1), type.keeps ? "52" : unwritten);
  EXPECT_EQ(Copy(0xE00000 + 0xFFFFF, 1), type.keeps ? "53" : unwritten);
  EXPECT_EQ(Copy(0xB8B000, 2), "0000");
  EXPECT_EQ(Copy(0xA3B100 + 0x28, 1), "00") << "as the factory has it";
  EXPECT_EQ(device::Flash(0xA3B100 + 0x28, 1), "55") << "the live store";
  EXPECT_FALSE(std::filesystem::exists(board_kit::Named() / "root/.config/Zephyrix/Cormoran.ini"));
}

INSTANTIATE_TEST_SUITE_P(, ResetType,
                         testing::Values(Type{0, kReadDhcpAndFiles, "01", false},
                                         Type{1, kSetNetwork, "00", false},
                                         Type{2, kReadDhcpAndFiles, "01", true},
                                         Type{3, "", "00", false}, Type{255, "", "00", false}),
                         [](const auto& test) { return std::to_string(test.param.type); });

// Nothing that fails keeps a reset from ending in its reboot.
TEST(Reset, GoesOnWhateverFails) {
  struct Case {
    const char* name;
    Fault fault;
    const char* says;
  };
  constexpr Case kCases[] = {
      {"nothing", Fault::kSyncCount, ""},
      {"flash reads", Fault::kFlashRead,
       "Error === DevNameFileAddr ===Read from flash failed when reading DevNameFile ! \n"
       "Error === RVConfigFileAddr ===Read from flash failed when reading RvFile ! \n"},
      {"writes to the copy", Fault::kFlashWrite, ""},
      {"cards' answers", Fault::kCardRead, ""},
      {"packets to cards", Fault::kCardWrite, ""},
      {"the FPGA", Fault::kFpgaWrite, ""},
  };
  BeginUsed("none");
  device::Log log(0);
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.name);
    if (c.fault != Fault::kSyncCount) SetFaultCount(c.fault, -1);
    Global().RebootRF = EN_REBOOT_WAIT_RET_PACK;
    Global().ReturnFactory(2);
    SetFaultCount(c.fault, 0);
    const std::string lines = log.Take();
    EXPECT_NE(lines.find(c.says), std::string::npos) << lines;
    EXPECT_EQ(Global().RebootRF, EN_REBOOT_ING);
  }
  std::filesystem::remove(board::StorePath(board::Store::kFactory));
  Global().ReturnFactory(2);
  EXPECT_EQ(
      support::Count(log.Take(), "Error === ReturnFactory ===cp of the factory image failed!"), 1);
}

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
