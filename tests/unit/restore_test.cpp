// The boot restore: flash into the arrays, the arrays into the FPGA, and a first boot.
#include <gtest/gtest.h>

#include <functional>
#include <regex>
#include <sstream>

#include "board/envstore.h"
#include "board/faults.h"
#include "proto/porttables.h"
#include "support/device.h"
#include "support/inprocess.h"
#include "support/rows.h"
#include "support/trace.h"

namespace {

using namespace ZEPH_MCUC;
using board::Fault;
using board::SetFaultCount;
using device::Fpga;
using device::Global;
using device::Image;
using device::PutFlash;
using device::Restore;

constexpr std::uint32_t kStored = 0xA3B100;  // the feature image in flash

// Both tables, read from flash and, with the FPGA loaded, sent.
std::string Tables(bool online) {
  std::ostringstream lines;
  lines << std::hex;
  for (int port = 0; port < 10; ++port) {
    lines << "flash R 0x" << 0xA3C000 + port * 0x1000 << " x4096\n";
    for (int block = 0; online && block < 4; ++block) {
      lines << "fpga W 0x" << 0x600000 + port * 0x1000 + block * 0x400 << " x1024\n";
    }
  }
  lines << "flash R 0xa5c000 x768\n";
  if (online) {
    lines << "fpga W 0x500000 x128\nfpga W 0x501000 x128\nfpga W 0x502000 x128\n"
             "fpga W 0x500100 x256\nfpga W 0x1de 00\nflash W 0xd17000 00\n";
  }
  return lines.str();
}

// The whole restore; `between` is what bypass adds behind the image.
std::string Order(bool online, const std::string& between = "") {
  return std::string("flash R 0xa3b100 x512\nflash R 0xa60010 x1\n") +
         (online ? "fpga R 0x9d x1\n" : "") + "flash R 0xc20040 x15\nenv get firstboot\n" +
         (online ? "fpga W 0x18 x472\n" : "") + between + "flash R 0xb99000 x1\n" + Tables(online) +
         "flash R 0xc20040 x15\n";
}

TEST(Restore, OfflineFillsTheArraysAndLeavesTheFpgaAlone) {
  device::Begin("fpga flash env shell");
  PutFlash(kStored + 0x45, "77");
  PutFlash(0xA60010, "01");
  PutFlash(0xC20040, "0155");
  PutFlash(0xB99000, "b8");
  PutFlash(0xA3C000 + 40958, "abcd");
  PutFlash(0xA5C000 + 766, "ef01");
  Global().RebootRF = EN_REBOOT_ING;
  support::Trace trace;
  Restore(false);
  EXPECT_EQ(trace.Take(), Order(false));
  EXPECT_EQ(Image(0x45, 1), "77");
  EXPECT_EQ(Global().PbufMorSMode, 1);
  EXPECT_EQ(Global().ScreenParaReg.u16(0), 0x5501);
  EXPECT_EQ(Global().LEDConfigStatus, 0xB8);
  EXPECT_EQ(PortsTopoPara.u16(40958), 0xCDAB);
  EXPECT_EQ(NumberPartPara.u16(766), 0x01EF);
  EXPECT_EQ(Global().RebootRF, EN_NOT_REBOOT);
  EXPECT_FALSE(Global().FpgaParaLoadFinish);
}

TEST(Restore, OnlineSendsTheArraysInOrderAndClosesTheOutput) {
  struct Case {
    const char* output;    // stored at 0x1DE
    const char* mode;      // stored at 0x23
    const char* modeSent;  // in the image and the FPGA
  };
  for (const Case& c : {Case{"5a", "55", "20"}, {"33", "21", "21"}, {"00", "10", "10"}}) {
    device::Begin("fpga flash env shell");
    PutFlash(kStored + 0x1DE, c.output);
    PutFlash(kStored + 0x23, c.mode);
    PutFlash(kStored + 0x3F, "19");
    PutFlash(0xA3C000 + 40958, "abcd");
    PutFlash(0xA5C000 + 0x200, "0102");
    PutFlash(0xA5C000 + 0x280, "0304");
    PutFlash(0xD17000, "09");
    support::Trace trace;
    Restore(true);
    EXPECT_EQ(trace.Take(), Order(true));
    EXPECT_EQ(Fpga(0x23, 1), c.modeSent);
    EXPECT_EQ(Image(0x23, 1), c.modeSent);
    EXPECT_EQ(Fpga(0x3F, 1), "19");
    EXPECT_EQ(Fpga(0x1DE, 1), "00");
    EXPECT_EQ(Image(0x1DE, 1), "5a");
    EXPECT_EQ(Fpga(0x600000 + 40958, 2), "abcd");
    EXPECT_EQ(Fpga(0x502000, 2), "0102");
    EXPECT_EQ(Fpga(0x503000, 2), "0000") << "the last block goes nowhere";
    EXPECT_TRUE(Global().FpgaParaLoadFinish);
  }
}

TEST(Restore, BypassGoesOutByItsMode) {
  device::Begin("fpga flash env shell");
  support::Trace trace;
  // The mode, the offsets at 0x28 and at 0x1F0, and what goes out.
  for (const auto& row : support::Rows(4, R"(
      00 | 64003200 | 9cffffffceffffff |
      01 | 64003200 | 9cffffffceffffff | 91 0000, ac 0000, 28 64003200
      a5 | 64003200 | 0000000000000000 | 91 0000, ac 0000, 28 64003200
      02 | 00000000 | 9cffffff64000000 | 28 6400, 91 0000, 2a 6400, ac ffff
      02 | 64003200 | 0000000001000180 | 28 0000, 91 0000, 2a ffff, ac 0000
    )")) {
    PutFlash(kStored + 0x28, row[1].c_str());
    PutFlash(kStored + 0x1F0, row[2].c_str());
    PutFlash(kStored + 0x1F8, row[0].c_str());
    Restore(true);
    const std::regex access("(\\w+ \\w+),? ?");
    EXPECT_EQ(trace.Take(), Order(true, std::regex_replace(row[3], access, "fpga W 0x$1\n")))
        << row[0] << " " << row[2];
  }
}

TEST(Restore, RoleInTheFpgaEndsNormalOperation) {
  device::Begin("none");
  for (const auto& [role, normal] : {std::pair{"5a", 0}, {"a5", 0}, {"00", 1}, {"5b", 1}}) {
    Global().NormalBackupStatus = 7;
    device::PutFpga(0x9D, role);
    Restore(false);
    EXPECT_EQ(Global().NormalBackupStatus, 7) << "not asked";
    Restore(true);
    EXPECT_EQ(Global().NormalBackupStatus, normal) << role;
  }
}

TEST(Restore, FirstBootStartsAsOneCard) {
  const std::string stored =
      "flash R 0xc20040 x15; env get firstboot; flash R 0xc20000 x8; flash R 0xc20008 x8; "
      "flash W 0xc20000 6000000060000000; flash W 0xd17000 00; flash R 0xc20000 x8";
  const std::string begin = "flash R 0xa3b100 x512; flash R 0xa60010 x1; ";
  device::Begin("fpga flash env shell bus");
  PutFlash(0xC20000, "6000000060000000 6000000060000000");
  PutFlash(0xD17000, "05");
  PutFlash(0xB99000, "a8");
  board::WriteEnv("firstboot", "1");
  support::Trace trace;
  Restore(false);
  EXPECT_EQ(trace.TakeLine(), begin + stored);
  EXPECT_EQ(board::ReadEnv("firstboot"), "1");
  EXPECT_EQ(Global().ReceiveCardWidth, 0x60);
  EXPECT_EQ(Image(0x1EC, 4), "60006000");
  EXPECT_EQ(factory_flag, 1);

  Restore(true);
  const std::string lines = trace.TakeLine();
  EXPECT_TRUE(lines.starts_with(begin + "fpga R 0x9d x1; " + stored +
                                "; shell envcfg set firstboot 0; flash W 0xc20040 x15; "))
      << lines;
  EXPECT_TRUE(lines.ends_with(
      "; shell sync; flash R 0xb99000 x1; fpga R 0x18 x4; owd 0x02000018 00000000; fpga R 0x98 x4; "
      "owd 0x02000098 00000000; fpga R 0x100 x8; owd 0x02000100 0000000000000000"))
      << lines;
  EXPECT_EQ(lines.find("fpga W 0x1de"), lines.npos) << "the rest of a restore is skipped";
  EXPECT_EQ(Fpga(0x609FFC, 4), "00000000") << "the layout of one card";
  EXPECT_EQ(board::ReadEnv("firstboot"), "0");
  EXPECT_EQ(Global().LEDConfigStatus, 0xA8);

  Restore(true);
  EXPECT_EQ(support::Count(trace.Take(), "shell envcfg set firstboot 0"), 1);
  EXPECT_EQ(factory_flag, 0);
}

TEST(Restore, SizesInFlash) {
  device::Begin("none");
  device::Log log;
  // What is stored, the result, the screen's size, the card's, and the log with % for either name.
  for (const auto& row : support::Rows(5, R"(
      8001000090000000 | 0  | 384 144 | 384 144 | Info =======Read FromFlash %Size = 384 144;
      0000000000000000 | -1 | 0 0     | 128 128
        | Error =======Read FromFlash %SizeW = 0;Error =======Read FromFlash %SizeH = 0;
      0001000000000000 | -1 | 256 0   | 256 128 | Error =======Read FromFlash %SizeH = 0;
    )")) {
    std::uint32_t size[2] = {};
    const auto shown = [&] { return std::to_string(size[0]) + " " + std::to_string(size[1]); };
    PutFlash(0xC20000, (row[0] + row[0]).c_str());
    log.Take();
    EXPECT_EQ(std::to_string(Global().Read_ScreenSize_FromFlash(size)), row[1]);
    EXPECT_EQ(shown(), row[2]);
    const auto named = std::regex_replace(row[4], std::regex("%"), "Screen");
    EXPECT_TRUE(log.Take().ends_with(std::regex_replace(named, std::regex(";"), "\n"))) << named;
    EXPECT_EQ(std::to_string(Global().Read_CardSize_FromFlash(size)), row[1]);
    EXPECT_EQ(shown(), row[3]);
  }
}

TEST(Restore, GoesOnWhateverFails) {
  device::Begin("none");
  device::Log log(0);
  Global().LEDConfigStatus = 200;
  Global().PbufMorSMode = 1;
  SetFaultCount(Fault::kFlashRead, -1);
  Restore(false);
  EXPECT_EQ(log.Take(),
            R"(Error === BootRecover ===Can not read flash when get the PbufMorSMode in poweron! 
Error === BootRecover ===Can not read flash when get the ScreenParaReg[0x01] in poweron! 
Error =============================Screen Para is Zero!!!  =============================
Error === RestoreFPGA ===Can not read flash when get the ScreenParaReg ! 
)");
  EXPECT_EQ(Image(0, 512), std::string(0x46, '0') + "20" + std::string(1024 - 0x48, '0'));
  EXPECT_EQ(std::pair(int{Global().LEDConfigStatus}, int{Global().PbufMorSMode}),
            std::pair(200, 1));
}

// What a client reads while a restore is under way comes from the FPGA, which has just powered up.
TEST(Restore, ReadInBetweenTakesNothingFromAnFpgaThatDoesNotHoldTheImageYet) {
  device::Begin("fpga");
  Restore(true);
  const std::string stored = Image(0x18, 472);
  device::PutFpga(0x18, std::string(2 * 472, '0').c_str());
  support::Trace trace;
  Global().LoadFeatureImage(Global().SendParameterReg.snapshot<512>(0));
  EXPECT_EQ(device::Hex(inprocess::Read(0x02000017, 480).m_data).substr(2, 2 * 6),
            stored.substr(0, 12));
  EXPECT_EQ(trace.Take(), "fpga R 0x17 x473\n");
  EXPECT_EQ(Image(0x1EC, 4), "80008000");
  Global().SendFeatureImage();
  EXPECT_EQ(Fpga(0x1EC, 4), "80008000");
  device::PutFpga(0x1EC, "01020304");
  inprocess::Read(0x020001E8, 16);
  EXPECT_EQ(Image(0x1EC, 4), "01020304");
}

// A client reads the page of an FPGA that has yet to load, and then changes or saves something.
TEST(Restore, ReadBeforeTheFpgaHasLoadedTakesNothingIntoTheStore) {
  const auto change = [] { device::WriteFeature(0x50, "07"); };
  const auto save = [] {
    inprocess::Write(0x01000001, inprocess::Bytes("01"));
    inprocess::DrainQueue();
  };
  device::Begin("none");
  for (const std::function<void()>& store : {std::function<void()>(change), {save}}) {
    device::PutFlash(0xA3B160, "11223344");
    device::PutFpga(0x60, "00000000");
    Restore(false);
    EXPECT_EQ(device::Hex(inprocess::Read(0x02000000, 512).m_data).substr(2 * 0x60, 8), "00000000");
    EXPECT_EQ(device::Hex(inprocess::Read(0x02000060, 4).m_data), "00000000");
    store();
    EXPECT_EQ(device::Flash(0xA3B160, 4), "11223344");
    EXPECT_EQ(device::Hex(inprocess::Read(0x02000060, 4).m_data), "11223344");
  }
}

}  // namespace
