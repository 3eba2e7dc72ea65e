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

using board::Fault;
using board::SetFaultCount;

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

// What the trace says was written over the bus, in bytes.
std::size_t BytesWritten(const std::string& lines) {
  std::size_t bytes = 0;
  std::istringstream text(lines);
  for (std::string line; std::getline(text, line);) {
    if (!line.starts_with("fpga W")) continue;
    const std::string data = line.substr(line.rfind(' ') + 1);
    bytes += data[0] == 'x' ? std::stoul(data.substr(1)) : data.size() / 2;
  }
  return bytes;
}

TEST(ModeChange, LoadsThreeTablesThenSwitchesThenStores) {
  device::Begin("fpga flash");
  support::Trace trace;
  ChooseMode("58");
  const std::string lines = trace.Take();
  EXPECT_EQ(lines, LoadAll() + "fpga W 0x500109 5a\nfpga W 0x1ea 58\nflash W 0xc21000 x10\n");
  EXPECT_EQ(BytesWritten(lines), 24 * 1024 + 2);
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

TEST(ModeChange, StoresAtMost32BytesOfARequest) {
  device::Begin("flash");
  support::Trace trace;
  char request[40] = {0x78, 2};
  Tprocess::Sprocess_HLG(sizeof request, request);
  EXPECT_EQ(trace.Take(), "flash W 0xc21000 x32\n");
  Tprocess::Sprocess_HDR10(1, request);  // a block that ends early counts as zeros
  EXPECT_EQ(trace.Take(), "flash W 0xc21000 78\n");
  EXPECT_EQ(*PbufScrPeakLight, 0);
}

TEST(ModeChange, TableThatCannotBeReadIsTheBuiltInOne) {
  device::Begin("none");
  const GammaTable stored = PowerTable(2.2, 10);
  for (const auto& table : rgbgamma::TablesOf(rgbgamma::Set::k10Bit)) {
    device::PutFlash(table.tag, kTag);
    device::PutFlash(table.flash, device::Hex(stored).c_str());
  }
  const GammaTable& built_in = GammaTable_x();
  for (int failing = 0; failing < 6; ++failing) {  // tag and table of each colour
    SetFaultCount(Fault::kSkip, failing);
    SetFaultCount(Fault::kFlashRead, 3);
    ChooseMode("00");
    const int colour = failing / 2;
    ExpectInFpga(colour == 0 ? built_in : stored, colour == 1 ? built_in : stored,
                 colour == 2 ? built_in : stored);
  }
}

// A failed access is lost by itself: all others arrive.
TEST(ModeChange, SurvivesAFailureOfEachAccess) {
  device::Begin("none");
  const std::string tables =
      device::Hex(UsualHdr10()) + device::Hex(UsualHdr10()) + device::Hex(UsualHdr10());
  for (int failing = 0; failing < 26; ++failing) {
    ChooseMode("00");
    SetFaultCount(Fault::kSkip, failing);
    SetFaultCount(Fault::kFpgaWrite, 3);
    ChooseMode("58");
    std::string held, expected = tables;
    for (const auto colour :
         {rgbgamma::Colour::kRed, rgbgamma::Colour::kGreen, rgbgamma::Colour::kBlue}) {
      held += InFpga(colour);
    }
    if (failing < 24) {
      const auto at = static_cast<std::size_t>(failing) * 2048;
      expected.replace(at, 2048, device::Hex(GammaTable_x()).substr(at % 16384, 2048));
    }
    EXPECT_EQ(held, expected) << failing;
    EXPECT_EQ(device::Fpga(0x500109, 1), failing == 24 ? "00" : "5a");
    EXPECT_EQ(device::Fpga(0x1EA, 1), failing == 25 ? "ff" : "58");
  }
}

TEST(ModeChange, LogsARequestThatCannotBeStored) {
  device::Begin("none");
  device::Log log(0);
  SetFaultCount(Fault::kFlashWrite, 3);
  ChooseMode("78");
  EXPECT_EQ(log.Take(),
            "Error === WriteToHCInteraction ===write to page program failed. driverRet = -1\n");
  ExpectInFpga(Hlg(4));
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
