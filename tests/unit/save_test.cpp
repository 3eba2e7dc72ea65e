// From memory to flash: what a save writes, in which order, and what it says of what fails.
#include <gtest/gtest.h>

#include "board/faults.h"
#include "process/tprocess.h"
#include "proto/porttables.h"
#include "support/device.h"
#include "support/inprocess.h"
#include "support/trace.h"

namespace {

using namespace ZEPH_MCUC;
using board::Fault;
using board::SetFaultCount;
using device::Flash;
using device::Global;

void Save() {
  char value = 1;
  Tprocess::Sprocess_SaveSendCardPara(1, &value);
}

TEST(Save, WritesEachRegionInOrderAndTheTagOnce) {
  const std::string image =
      "flash W 0xc20040 0103; flash R 0xb88000 x4; flash W 0xa3b100 x512; "
      "flash W 0xa61000 x512; ";
  const std::string tables = "flash W 0xa3c000 x40960; flash W 0xa5c000 x768; shell sync";
  device::Begin("flash shell");
  Global().ScreenParaReg.write(0, inprocess::Bytes("010355"));
  support::Trace trace;
  Save();
  EXPECT_EQ(trace.TakeLine(), image + "flash W 0xb88000 39f6a55a; " + tables);
  Global().LEDConfigStatus = 200;
  Save();
  EXPECT_EQ(trace.TakeLine(), "flash W 0xb99000 c8; " + image + tables);
}

TEST(Save, StoresWhatIsInMemory) {
  device::Begin("none");
  Global().ScreenParaReg.write(0, inprocess::Bytes("0103556677"));
  device::PutImage(0x1F8, "0102");
  ParaTable[255] = 0x1234;
  ParaTable[256] = 0xFFFF;
  PortsTopoPara.write(kPositionSize - 2, inprocess::Bytes("abcd"));
  NumberPartPara.write(kNumberSize - 2, inprocess::Bytes("ef01"));
  device::PutFlash(0xC20042, "99");
  Save();
  EXPECT_EQ(Flash(0xC20040, 3), "010399") << "two bytes alone";
  EXPECT_EQ(Flash(0xA3B100 + 0x1F8, 2), "0102");
  EXPECT_EQ(Flash(0xA61000 + 508, 6), "00003412ffff") << "no word behind the 256th";
  EXPECT_EQ(Flash(0xA3C000 + kPositionSize - 2, 2), "abcd");
  EXPECT_EQ(Flash(0xA5C000 + kNumberSize - 2, 3), "ef01ff");
}

TEST(Save, TagThatCannotBeReadIsANewOne) {
  device::Begin("flash");
  Save();
  support::Trace trace;
  SetFaultCount(Fault::kFlashRead, 3);
  Save();
  EXPECT_EQ(support::Count(trace.Take(), "flash W 0xb88000 39f6a55a"), 1);
  device::Log log(0);
  Tprocess::Sprocess_SaveSendCardPara(0, nullptr);
  EXPECT_EQ(log.Take(), "Error === Sprocess_SaveSendCardPara ===: data block is null! return.\n");
}

TEST(Save, VerdictOnTheImageIsLoggedAndStopsNothing) {
  struct Case {
    std::uint32_t offset;
    const char* value;
    bool passes;
  };
  constexpr Case kCases[] = {
      {0x21, "fe", true},     {0x21, "ff", false},   {0x24, "000f", true},   {0x24, "010f", false},
      {0x2A, "010f", false},  {0x2C, "ffff", false}, {0x2E, "ffff", true},   {0x51, "010f", false},
      {0x59, "ff", true},     {0xB1, "010f", false}, {0x149, "010f", false}, {0x176, "000f", true},
      {0x176, "010f", false}, {0x178, "ff", true},   {0x1EC, "ffff", true},
  };
  device::Begin("none");
  device::Log log;
  for (const Case& c : kCases) {
    Global().SendParameterReg.write(0, std::array<std::uint8_t, 512>{});
    device::PutImage(c.offset, c.value);
    Global().SaveParaToFlash(kSaveAll);
    const std::string lines = log.Take();
    const int invalid =
        support::Count(lines, "Error Finish parameter verify, the parameter is inv");
    const int valid = support::Count(lines, "Info Finish parameter verify. the parameter is OK.");
    EXPECT_EQ(invalid, c.passes ? 0 : 1) << std::hex << c.offset;
    EXPECT_EQ(valid, c.passes ? 1 : 0) << std::hex << c.offset;
    EXPECT_TRUE(Flash(0xA3B100 + c.offset, 2).starts_with(c.value)) << std::hex << c.offset;
  }
}

TEST(Save, OtherSelectorsAndTheBasicArea) {
  device::Begin("flash shell");
  Data_Preset::getInstance()->BasicHardWareReg.write(0, inprocess::Bytes("a1a2"));
  support::Trace trace;
  Global().SaveParaToFlash(kSaveBasicInfo);
  EXPECT_EQ(trace.Take(), "flash W 0xa01000 x256\n");
  EXPECT_EQ(Flash(0xA01000, 3), "a1a200");
  Global().SaveParaToFlash(2);
  EXPECT_EQ(trace.Take(), "");
  Global().SaveBasicParaToFlash();
  EXPECT_EQ(trace.Take(), "flash W 0x101f 55\nflash W 0x1000 x16\n");
}

TEST(Save, CopyGoesInPagesAndGivesTheLastResult) {
  struct Case {
    std::uint32_t length;
    const char* writes;
  };
  constexpr Case kCases[] = {
      {4, "flash W 0xc95000 01020304\n"},
      {300, "flash W 0xc95000 x256\nflash W 0xc95100 x44\n"},
      {512, "flash W 0xc95000 x256\nflash W 0xc95100 x256\nflash W 0xc95200 -\n"},
      {0, "flash W 0xc95000 -\n"},
  };
  device::Begin("flash");
  std::vector<std::uint8_t> data = inprocess::Bytes("01020304");
  data.resize(512);
  support::Trace trace;
  for (const Case& c : kCases) {
    EXPECT_EQ(Global().CopyConstDataToFlash(0xC95000, data.data(), c.length), 0);
    EXPECT_EQ(trace.Take(), c.writes);
  }
  SetFaultCount(Fault::kFlashWrite, 3);
  EXPECT_EQ(Global().CopyConstDataToFlash(0xC95000, data.data(), 300), 0) << "the first page's";
  SetFaultCount(Fault::kSkip, 1);
  SetFaultCount(Fault::kFlashWrite, 3);
  EXPECT_EQ(Global().CopyConstDataToFlash(0xC95000, data.data(), 300), -1);
}

}  // namespace
