// Mode changes and colour settings: what reaches the FPGA and the store, and in which order.
#include <gtest/gtest.h>
#include <platform/gamma.h>

#include <sstream>

#include "board/faults.h"
#include "process/tprocess.h"
#include "proto/calc_curves.h"
#include "proto/calc_rgbgamma.h"
#include "support/device.h"
#include "support/inprocess.h"
#include "support/trace.h"

namespace ZEPH_MCUC {
namespace {

constexpr char kTag[] = "39f6a55a";

void Write(std::uint32_t address, const char* hex) {
  inprocess::Write(address, inprocess::Bytes(hex));
  inprocess::DrainQueue();
}

void ChooseMode(const char* type) { Write(0x02200117, type); }

// The lines of a table's load into the FPGA.
std::string Load(std::uint32_t bus) {
  std::ostringstream lines;
  for (std::uint32_t at = 0; at < 8192; at += 1024) {
    lines << "fpga W 0x" << std::hex << bus + at << " x1024\n";
  }
  return lines.str();
}

std::string LoadAll() { return Load(0x700000) + Load(0x710000) + Load(0x720000); }

std::string InFpga(rgbgamma::Colour colour) {
  return device::Fpga(rgbgamma::BusOf(colour), kGammaTableSize);
}

void ExpectInFpga(const GammaTable& red, const GammaTable& green, const GammaTable& blue) {
  EXPECT_EQ(InFpga(rgbgamma::Colour::kRed), device::Hex(red));
  EXPECT_EQ(InFpga(rgbgamma::Colour::kGreen), device::Hex(green));
  EXPECT_EQ(InFpga(rgbgamma::Colour::kBlue), device::Hex(blue));
}

void ExpectInFpga(const GammaTable& table) { ExpectInFpga(table, table, table); }

GammaTable UsualHdr10() {
  GammaTable table{};
  HDR10GammaCalculation(1000, 30, 100, 10, 15, 140, table.data());
  return table;
}

GammaTable Hlg(std::uint8_t hlg_class) {
  GammaTable table{};
  HLGGammaCalculation(hlg_class, table.data());
  return table;
}

TEST(ModeChange, LoadsThreeTablesThenSwitchesThenStores) {
  device::Begin("fpga flash");
  support::Trace trace;
  ChooseMode("58");
  EXPECT_EQ(trace.Take(),
            LoadAll() + "fpga W 0x500109 5a\nfpga W 0x1ea 58\nflash W 0xc21000 x10\n");
  ExpectInFpga(UsualHdr10());
  EXPECT_EQ(device::Image(0x1EA, 1), "58");

  ChooseMode("78");
  EXPECT_EQ(trace.Take(),
            LoadAll() + "fpga W 0x500109 5a\nfpga W 0x1ea 58\nflash W 0xc21000 x10\n");
  ExpectInFpga(Hlg(4));
  EXPECT_EQ(device::Fpga(0x1EA, 1), "58");  // HLG too
}

TEST(ModeChange, BackToDefaultBringsStoredTablesAndTheBuiltInOnesForTheRest) {
  device::Begin("fpga flash");
  const GammaTable red = PowerTable(2.2, 10);
  device::PutFlash(0xD00000, kTag);
  device::PutFlash(0xD03000, device::Hex(red).c_str());
  device::PutFlash(0xD05000, device::Hex(red).c_str());  // not tagged
  device::PutFlash(0xD02000, "39f6a55b");                // not the tag
  ChooseMode("58");
  support::Trace trace;
  ChooseMode("00");
  EXPECT_EQ(trace.Take(), "flash R 0xd00000 x4\nflash R 0xd03000 x8192\n" + Load(0x700000) +
                              "flash R 0xd01000 x4\n" + Load(0x710000) + "flash R 0xd02000 x4\n" +
                              Load(0x720000) +
                              "fpga W 0x500109 00\nfpga W 0x1ea ff\nflash W 0xc21000 x10\n");
  ExpectInFpga(red, GammaTable_x(), GammaTable_x());
  EXPECT_EQ(device::Image(0x1EA, 1), "58");  // the image doesn't follow
  ChooseMode("33");                          // no type at all: the switches alone
  EXPECT_EQ(trace.Take(),
            "flash R 0xd00000 x4\nflash R 0xd01000 x4\nflash R 0xd02000 x4\n"
            "fpga W 0x500109 00\nfpga W 0x1ea ff\nflash W 0xc21000 x10\n");
}

TEST(ModeChange, OfTheBitDepthSlotChoosesTheSet) {
  device::Begin("none");
  const GammaTable twelve = PowerTable(2.4, 12);
  for (const auto& table : rgbgamma::TablesOf(rgbgamma::Set::k12Bit)) {
    device::PutFlash(table.tag, kTag);
    device::PutFlash(table.flash, device::Hex(twelve).c_str());
  }
  ChooseMode("00");
  ExpectInFpga(GammaTable_x());
  *PbufSendcardBitDepth = 0x78;
  ChooseMode("00");
  ExpectInFpga(twelve);
  EXPECT_EQ(device::Fpga(0x500109, 1), "78");
}

TEST(ColourSetting, LoadsBothMatricesAndShowsWhatWasApplied) {
  device::Begin("fpga flash");
  support::Trace trace;
  Write(0x0220013A, "28462c01");  // saturation 40, contrast 70, hue 300
  EXPECT_EQ(trace.Take(), "fpga W 0xd00000 x32\nfpga W 0xd00040 x32\n");
  std::array<std::uint8_t, 32> matrix{};
  PictureQualityCalculation(FRtoFR, 40, 70, 300, 0, matrix.data());
  EXPECT_EQ(device::Fpga(0xD00000, 32), device::Hex(matrix));
  PictureQualityCalculation(LYtoFR, 40, 70, 300, 0, matrix.data());
  EXPECT_EQ(device::Fpga(0xD00040, 32), device::Hex(matrix));
  // Written as saturation and contrast in one byte each, read as contrast first in two.
  EXPECT_EQ(device::Hex(inprocess::Read(0x0220013A, 6).m_data), "460028002c01");
}

}  // namespace
}  // namespace ZEPH_MCUC
