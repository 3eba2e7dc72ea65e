// Writes to the feature space: what each sets off, and in which order.
#include <gtest/gtest.h>
#include <platform/mbus.h>

#include "board/faults.h"
#include "process/tprocess_ctl.h"
#include "proto/addr_hardwarebrightnessadjust.h"
#include "support/board_kit.h"
#include "support/device.h"
#include "support/inprocess.h"
#include "support/trace.h"

namespace {

using namespace ZEPH_MCUC;
using board::Fault;
using board::SetFaultCount;
using device::Global;
using device::Image;

constexpr std::uint32_t kBase = 0x02000000;
const std::string kStored = "flash W 0xa3b100 x512\n";

// Bytes of the image, in front of a write or behind it.
struct Put {
  std::uint32_t offset;
  const char* hex;
};

// An output size stored as the first change, of 32-bit width and height in hexadecimal.
std::string Size(const std::string& size) {
  return "flash W 0xc20000 " + size + "\nflash R 0xd17000 x1\nflash W 0xd17000 01\n";
}

// A picture of 1024 by 768, all else 0.
void ResetImage() {
  Global().SendParameterReg.write(0, std::array<std::uint8_t, 512>{});
  Global().ScreenParaReg.write(0, std::array<std::uint8_t, 16>{});
  for (const Put& put : {Put{0x24, "00040003"}, {0x2C, "0004"}, {0x1EC, "00040003"}}) {
    device::PutImage(put.offset, put.hex);
  }
  device::PutFlash(0xD17000, "00");
}

struct Effect {
  const char* name;
  std::vector<Put> before;
  Put write;
  std::string trace;
  std::vector<Put> after = {};
};

void Check(const std::vector<Effect>& effects) {
  device::Begin("fpga flash shell bus info");
  Addr_HardWareBrightnessAdjust::UartDiscOvertime = 9;
  support::Trace trace;
  for (const Effect& effect : effects) {
    SCOPED_TRACE(effect.name);
    ResetImage();
    for (const Put& put : effect.before) device::PutImage(put.offset, put.hex);
    device::WriteFeature(effect.write.offset, effect.write.hex);
    EXPECT_EQ(trace.Take(), effect.trace);
    for (const Put& put : effect.after) {
      EXPECT_EQ(Image(put.offset, std::strlen(put.hex) / 2), put.hex) << std::hex << put.offset;
    }
  }
}

TEST(FeatureWrite, SetsOffWhatItsOffsetMeans) {
  Check({
      {"plain", {}, {0x45, "abcd"}, "fpga W 0x45 abcd\n" + kStored, {{0x45, "abcd00"}}},
      {"up to the end", {}, {0x1F9, "01020304050607"}, kStored, {{0x1F9, "01020304050607"}}},
      {"past the end", {}, {0x1F9, "0102030405060708"}, "", {{0x1F9, "00000000000000"}}},
      {"UART overtime", {}, {0x3F, "09"}, kStored, {{0x3F, "09"}}},
      {"power-on time",
       {},
       {0x21, "28"},
       "fpga W 0x21 28\nshell envcfg set boot_screen 5\n" + kStored,
       {{0x21, "28"}}},
      {"power-on time of 35",
       {},
       {0x21, "23"},
       "fpga W 0x21 23\nshell envcfg set boot_screen 0\n" + kStored},
      {"power-on time of less",
       {},
       {0x21, "01"},
       "fpga W 0x21 01\nshell envcfg set boot_screen 0\n" + kStored},
      {"power-on time among others", {}, {0x21, "2800"}, "fpga W 0x21 2800\n" + kStored},
      {"mirrored", {}, {0x4A, "0708"}, "owd 0x0200004a 07\nfpga W 0x4a 0708\n" + kStored},
      {"low delay", {}, {0x74, "01"}, "owd 0x02000074 01\nfpga W 0x74 01\n" + kStored},
      {"correction", {}, {0x9C, "1122"}, "fpga W 0x9c 1122\nowd 0x0200009c 1122\n" + kStored},
      {"sync", {}, {0xD4, "01"}, "fpga W 0xd4 01\n" + kStored + "shell sync\n"},
      {"4K",
       {},
       {0x1D8, "01"},
       "fpga W 0x1d8 01\ninfo 1 0x020001d8 1 01\nflash W 0xa3b2d8 01\n" + kStored},
      {"optical port mode",
       {},
       {0x1DA, "0203"},
       "fpga W 0x1da 0203\nflash W 0xa3b2da 02\n" + kStored},
  });
}

TEST(FeatureWrite, SetsTheScreenSize) {
  const std::string zero =
      "shell echo \"Point:0 ,use adddr:0x20000%, wide:0 high:0, description:Read software para!!\""
      " >> /root/screen_zero.txt\n";
  const auto noted = [&](const char* offset) {
    return std::string(zero).replace(zero.find('%'), 1, offset);
  };
  Check({
      {"real size",
       {},
       {0x24, "8002e001"},
       "fpga W 0x24 8002e001\nfpga W 0x1ec 00000000\n" + Size("00040000e0010000") + kStored,
       {{0x1EC, "00000000"}}},
      {"another register that ends in 24",
       {},
       {0x124, "01"},
       "fpga W 0x124 01\nfpga W 0x1ec 00000000\n" + kStored,
       {{0x1EC, "00000000"}}},
      {"real height of a screen without size",
       {{0x1EC, "00000000"}},
       {0x26, "e001"},
       noted("26") + "fpga W 0x26 e001\n" + Size("00040000e0010000") + kStored,
       {{0x1EC, "0000e001"}}},
      {"set width of a screen without size",
       {{0x1EC, "00000000"}},
       {0x2C, "2003"},
       noted("2c") + "fpga W 0x2c 2003\n" + Size("2003000000030000") + kStored,
       {{0x1EC, "20030000"}}},
      {"real height of a screen with one",
       {},
       {0x26, "e001"},
       "fpga W 0x26 e001\n" + Size("0004000000030000") + kStored,
       {{0x1EC, "00040003"}}},
      {"the size itself",
       {},
       {0x1EC, "00050003"},
       "fpga W 0x1ec 00050003\n" + Size("0005000000030000") + kStored},
      {"in bypass without the offsets",
       {{0x1F8, "01"}, {0x28, "64003200"}},
       {0x1EC, "00050003"},
       "fpga W 0x1ec 00050003\n" + Size("9c040000ce020000") + kStored,
       {{0x1EC, "00050003"}}},
      {"in bypass smaller than an offset",
       {{0x1F8, "01"}, {0x28, "64000003"}},
       {0x1EC, "00050003"},
       "fpga W 0x1ec 00050003\n" + Size("0005000000030000") + kStored},
  });
}

TEST(FeatureWrite, TouchesTheScreenSizeFromAndToTheseOffsets) {
  struct Case {
    std::uint32_t offset;
    std::size_t length;
    bool touches;
  };
  constexpr Case kCases[] = {
      {0x22, 1, false},  {0x22, 2, true},   {0x23, 1, true},   {0x27, 1, true},  {0x28, 1, false},
      {0x28, 3, false},  {0x28, 4, true},   {0x2A, 1, false},  {0x2B, 1, true},  {0x2D, 1, true},
      {0x2E, 1, false},  {0x18, 64, true},  {0x1EA, 1, false}, {0x1EB, 1, true}, {0x1EF, 1, true},
      {0x1F0, 1, false}, {0x1F0, 8, false},
  };
  device::Begin("flash");
  support::Trace trace;
  for (const Case& c : kCases) {
    ResetImage();
    device::WriteFeature(c.offset, std::string(2 * c.length, '1').c_str());
    EXPECT_EQ(support::Count(trace.Take(), "flash W 0xc20000"), c.touches ? 1 : 0)
        << std::hex << c.offset << " " << c.length;
  }
}

TEST(FeatureWrite, ChangesBypass) {
  const std::string clear = "fpga W 0x91 0000\nfpga W 0xac 0000\n";
  Check({
      {"offsets from the registers",
       {{0x1F8, "02"}, {0x2A, "3200"}},
       {0x28, "6400"},
       "owd 0x020001f0 9cffffffceffffff\nfpga W 0x28 6400\n" + clear + kStored,
       {{0x1F8, "01"}, {0x1F0, "9cffffffceffffff"}}},
      {"offsets while it is off",
       {},
       {0x28, "6400"},
       "fpga W 0x28 6400\n" + kStored,
       {{0x1F0, "0000000000000000"}}},
      {"offsets of the service daemon",
       {{0x1F8, "01"}, {0x2A, "0700"}},
       {0x1F0, "ceffffff32000000"},
       "fpga W 0x28 3200\nfpga W 0x91 0000\nfpga W 0x2a 3200\nfpga W 0xac ffff\n" + kStored,
       {{0x1F8, "02"}, {0x28, "32000700"}, {0x1EC, "32040003"}}},
      {"both offsets back",
       {{0x1F8, "01"}, {0x28, "05000700"}},
       {0x1F0, "0000000001000080"},
       "fpga W 0x28 0000\nfpga W 0x91 0000\nfpga W 0x2a ffff\nfpga W 0xac 0000\n" + kStored,
       {{0x28, "0000ffff"}, {0x1EC, "0004ff02"}}},
      {"offsets of the service daemon while it is off",
       {},
       {0x1F0, "ceffffff32000000"},
       kStored,
       {{0x1F8, "00"}, {0x28, "00000000"}}},
      {"one byte of them", {{0x1F8, "01"}}, {0x1F0, "ce"}, kStored, {{0x1F8, "01"}}},
      {"on",
       {{0x28, "64003200"}, {0x1F0, "0102030405060708"}},
       {0x1F8, "a5"},
       clear + "fpga W 0x28 64003200\n" + kStored +
           "fpga W 0x28 00000000\nfpga W 0x1ec 9c03ce02\n" + Size("9c030000ce020000"),
       {{0x1F8, "01"}, {0x28, "00000000"}, {0x1EC, "9c03ce02"}, {0x1F0, "0000000000000000"}}},
      {"off",
       {{0x1F8, "02"}, {0x28, "64000000"}},
       {0x1F8, "00"},
       clear + "fpga W 0x28 00000000\n" + kStored +
           "fpga W 0x28 00000000\nfpga W 0x1ec 9c030003\n" + Size("9c03000000030000"),
       {{0x1F8, "00"}, {0x28, "00000000"}, {0x1EC, "9c030003"}}},
      {"any other value", {}, {0x1F8, "07"}, kStored, {{0x1F8, "07"}}},
      {"more than the one byte", {}, {0x1F8, "a500"}, kStored, {{0x1F8, "a5"}}},
  });
}

TEST(FeatureWrite, BypassMarksTheScreen) {
  struct Case {
    const char* screen;  // the first six of the screen's parameters
    Put write;
    const char* after;
  };
  constexpr Case kCases[] = {
      {"005500000000", {0x1F0, "ceffffffc4ffffff"}, "015532003c00"},
      {"000000000000", {0x1F0, "ceffffff3c000000"}, "030032000000"},
      {"070011111111", {0x1F0, "320000003c000000"}, "070011111111"},
      {"005511111111", {0x1F8, "a5"}, "015500000000"},
  };
  device::Begin("none");
  for (const Case& c : kCases) {
    ResetImage();
    device::PutImage(0x1F8, "01");
    Global().ScreenParaReg.write(0, inprocess::Bytes(c.screen));
    device::WriteFeature(c.write.offset, c.write.hex);
    EXPECT_EQ(device::Hex(Global().ScreenParaReg.snapshot<6>(0)), c.after);
  }
}

TEST(FeatureWrite, LowDelayInBypassNeedsGenlockAnd3DOff) {
  struct Case {
    const char* genlock;
    const char* state3D;
    bool passes;
  };
  const std::string asked = "flash R 0x202a x1\nflash R 0x2400 x1\n";
  device::Begin("fpga flash bus");
  for (const Case& c : {Case{"00", "28", true}, {"00", "00", false}, {"01", "28", false}}) {
    ResetImage();
    device::PutImage(0x1F8, "01");
    device::PutFlash(0x202A, c.genlock);
    device::PutFlash(0x2400, c.state3D);
    inprocess::Write(kBase + 0x74, inprocess::Bytes("01"));
    support::Trace trace;
    inprocess::DrainQueue();
    EXPECT_EQ(trace.Take(),
              asked + (c.passes ? "owd 0x02000074 01\nfpga W 0x74 01\n" + kStored : ""));
    EXPECT_EQ(Image(0x74, 1), c.passes ? "01" : "00");
  }
}

TEST(FeatureWrite, SetsFlags) {
  device::Begin("none");
  device::PutImage(0x1EC, "80008000");
  device::WriteFeature(0x1DF, "00");
  EXPECT_TRUE(Tprocess_ctl::OptToNetEnableOnce());
  struct Case {
    Put write;
    int highSpeed, test;
  };
  for (const Case& c : {Case{{0x1E9, "01"}, 1, 0},
                        {{0x1E9, "0200"}, 1, 0},
                        {{0x1E9, "02"}, 0, 0},
                        {{0x1EF, "01"}, 0, 1},
                        {{0x1EE, "0000"}, 0, 1},
                        {{0x1EF, "00"}, 0, 0}}) {
    device::WriteFeature(c.write.offset, c.write.hex);
    EXPECT_EQ(Global()._gCorroentHighSpeed, c.highSpeed) << c.write.hex;
    EXPECT_EQ(Global().RWFPGATestflag, c.test) << c.write.hex;
  }
}

TEST(FeatureWrite, UartOvertimeReachesTheBrightnessPlans) {
  using Brightness = Addr_HardWareBrightnessAdjust;
  struct Case {
    Put write;
    int overtime_s;
    bool stores, heard;
  };
  device::Begin("flash");
  device::PutImage(0x1EC, "80008000");
  support::Trace trace;
  Brightness::UartDiscOvertime = 0x28;
  for (const Case& c : {Case{{0x3F, "07"}, 7, true, true},
                        {{0x45, "00"}, 7, false, false},
                        {{0x3F, "07"}, 7, false, true},
                        {{0x3F, "00"}, 7, false, true},
                        {{0x3E, "0008"}, 8, true, false}}) {
    Brightness::DevComLinkState = 0;
    device::WriteFeature(c.write.offset, c.write.hex);
    EXPECT_EQ(Brightness::UartDiscOvertime, c.overtime_s) << c.write.hex;
    EXPECT_EQ(support::Count(trace.Take(), "flash W 0xb8b000") > 0, c.stores) << c.write.hex;
    EXPECT_EQ(Brightness::DevComLinkState, c.heard ? 1 : 0) << c.write.hex;
  }
}

TEST(FeatureWrite, OffsetsInBypassArePassedOnUnlessTheServiceDaemonSetThem) {
  struct Case {
    std::uint32_t sender;
    Put write;
    const char* mode;
    const char* passedOn;
  };
  device::Begin("bus");
  const std::uint32_t owd = TaskId(cardsel_bit_self(), task::kOwd);
  const std::uint32_t kye = TaskId(cardsel_bit_self(), task::kKye);
  const Case cases[] = {
      {kye, {0x28, "6400"}, "01", "owd 0x020001f0 9cfffffff6ffffff\n"},
      {kye, {0x28, "64000001"}, "02", "owd 0x020001f0 9cffffff00ffffff\n"},
      {kye, {0x2A, "0001"}, "01", "owd 0x020001f0 fbffffff00ffffff\n"},
      {kye, {0x28, "6400"}, "00", ""},
      {owd, {0x28, "6400"}, "01", ""},
      {kye, {0x28, "640001"}, "01", ""},
      {kye, {0x2A, "00010000"}, "01", ""},
      {kye, {0x29, "0001"}, "01", ""},
  };
  for (const Case& c : cases) {
    ResetImage();
    device::PutImage(0x28, "05000a00");
    device::PutImage(0x1F8, c.mode);
    auto request = inprocess::WriteRequest(kBase + c.write.offset, inprocess::Bytes(c.write.hex));
    request.ipcHeader.uiid = c.sender;
    support::Trace trace;
    inprocess::Serve(request);
    EXPECT_EQ(trace.Take(), c.passedOn) << c.write.hex << " " << c.mode;
    inprocess::DrainQueue();
  }
}

TEST(FeatureWrite, FailuresAreLoggedAndTheRestRuns) {
  struct Case {
    Put write;
    Fault fault;
    int passing;
    const char* log;
  };
  constexpr Case kCases[] = {
      {{0x1DA, "01"},
       Fault::kFlashWrite,
       0,
       "Error === DoWriteFeatureInfo =========OptPort mode WriteDataToFlash failed !\n"},
      {{0x1D8, "01"},
       Fault::kFlashWrite,
       0,
       "Error === DoWriteFeatureInfo =========vio4K WriteDataToFlash failed !\n"},
      {{0x45, "ab"},
       Fault::kFlashWrite,
       0,
       "Error === DoWriteFeatureInfo ========= WriteDataToFlash failed !\n"},
      {{0x45, "ab"},
       Fault::kFpgaWrite,
       0,
       "Error >>>>>>>>>>>>>>>>>>>>> FPGA Write Fail<<<<<<<<<<<<<<<<<<<\n"
       "Error === ====== Read Fpga Status para = 1  =========\n"
       "Error >>>>>>>>>>>>>>>>>>>>>Read FPGA Status Up<<<<<<<<<<<<<<<<<<<\n"},
  };
  device::Begin("flash");
  device::PutImage(0x1EC, "80008000");
  device::Log log(0);
  for (const Case& c : kCases) {
    support::Trace trace;
    SetFaultCount(c.fault, 3);
    device::WriteFeature(c.write.offset, c.write.hex);
    EXPECT_EQ(log.Take(), c.log);
    EXPECT_EQ(Image(c.write.offset, 1), c.write.hex) << "the array holds the client's value";
    EXPECT_GE(support::Count(trace.Take(), "flash W 0xa3b100"), 1);
  }
}

}  // namespace
