// The gamma space: uploads by pieces, tags, loads, and the odd reads.
#include <gtest/gtest.h>

#include <sstream>

#include "board/faults.h"
#include "proto/calc_curves.h"
#include "proto/calc_rgbgamma.h"
#include "support/board_kit.h"
#include "support/device.h"
#include "support/inprocess.h"
#include "support/trace.h"

namespace ZEPH_MCUC {
namespace {

using board::Fault;
using board::SetFaultCount;
using rgbgamma::Set;

constexpr char kTag[] = "39f6a55a";
constexpr std::uint32_t kPiece = 1024;

void Write(std::uint32_t reg, std::span<const std::uint8_t> bytes) {
  EXPECT_EQ(inprocess::Write(reg, bytes).m_ucAck, 0);
  EXPECT_EQ(inprocess::DrainQueue(), 1);
}

void Write(std::uint32_t reg, std::size_t length) {
  Write(reg, std::vector<std::uint8_t>(length, 0xC7));
}

void Upload(const rgbgamma::Table& table, const GammaTable& bytes) {
  for (std::uint32_t at = 0; at < bytes.size(); at += kPiece) {
    Write(table.reg + at, std::span(bytes).subspan(at, kPiece));
  }
}

void Upload(Set set, const GammaTable& bytes) {
  for (const auto& table : rgbgamma::TablesOf(set)) Upload(table, bytes);
}

// `from` in eight lines a KiB apart.
std::string Pieces(const char* start, std::uint32_t from) {
  std::ostringstream lines;
  for (std::uint32_t at = 0; at < 8 * kPiece; at += kPiece) {
    lines << start << " 0x" << std::hex << from + at << " x1024\n";
  }
  return lines.str();
}

std::string TagLine(const char* how, std::uint32_t flash) {
  std::ostringstream line;
  line << "flash " << how[0] << " 0x" << std::hex << flash << " " << how + 2 << "\n";
  return line.str();
}

struct Places {
  Set set;
  std::uint32_t tags[3];
  std::uint32_t tables[3];
};
constexpr Places kSets[] = {
    {Set::k12Bit, {0xD09000, 0xD0A000, 0xD0B000}, {0xD0C000, 0xD0E000, 0xD10000}},
    {Set::k10Bit, {0xD00000, 0xD01000, 0xD02000}, {0xD03000, 0xD05000, 0xD07000}},
};
constexpr std::uint32_t kBus[] = {0x700000, 0x710000, 0x720000};

TEST(RGBGamma, UploadStoresPieceByPieceTagsAndLoadsAfterBlue) {
  device::Begin("fpga flash");
  for (const Places& places : kSets) {
    std::string expected;
    for (int colour = 0; colour < 3; ++colour) {
      expected += Pieces("flash W", places.tables[colour]);
      expected += TagLine("W 39f6a55a", places.tags[colour]);
    }
    for (int colour = 0; colour < 3; ++colour) {
      expected += TagLine("R x4", places.tags[colour]);
      expected += TagLine("R x8192", places.tables[colour]);
      expected += Pieces("fpga W", kBus[colour]);
    }
    const GammaTable bytes = PowerTable(places.set == Set::k12Bit ? 2.4 : 2.2, 12);
    support::Trace trace;
    Upload(places.set, bytes);
    EXPECT_EQ(trace.Take(), expected);
    for (const std::uint32_t bus : kBus) EXPECT_EQ(device::Fpga(bus, 8192), device::Hex(bytes));
  }
}

TEST(RGBGamma, WhatAPieceLeavesDependsOnWhereItBeginsAndEnds) {
  struct Case {
    std::uint32_t reg;
    std::size_t length;
    const char* trace;
  };
  constexpr Case kCases[] = {
      {0x0E001C00, 1024, "flash W 0xd0dc00 x1024\nflash W 0xd09000 39f6a55a\n"},
      {0x0E001FFE, 2, "flash W 0xd0dffe c7c7\nflash W 0xd09000 39f6a55a\n"},
      {0x0E003FFE, 2, "flash W 0xd04ffe c7c7\nflash W 0xd00000 39f6a55a\n"},
      {0x0E102FFD, 3, "flash W 0xd05ffd c7c7c7\n"},
      {0x0E001FFE, 1, "flash W 0xd0dffe c7\n"},
      {0x0E001FFE, 3, ""},     // would run into the next table
      {0x0E001C01, 1024, ""},  // the same
      {0x0E001FFF, 1, ""},     // nobody's byte
      {0x0E004000, 2, ""},     // behind the tables
      {0x0E0FFFFF, 1, ""},
      {0x0E302000, 1, "flash W 0xd13000 c7\n"},
      {0x0E300000, 1, "flash W 0xd12000 c7\n"},
      {0x0E302000, 2, ""},
      {0x0E300001, 1, ""},
  };
  device::Begin("fpga flash");
  support::Trace trace;
  for (const Case& c : kCases) {
    Write(c.reg, c.length);
    EXPECT_EQ(trace.Take(), c.trace) << std::hex << c.reg << ' ' << c.length;
  }
}

TEST(RGBGamma, ReadsShowTheFpgaAndTheStoredValues) {
  device::Begin("fpga flash");
  device::PutFpga(0x700010, "1112131415");
  device::PutFpga(0x702000, "2122");
  device::PutFpga(0x7203FF, "31");
  device::PutFlash(0xD12000, "0a");
  device::PutFlash(0xD13000, "0c");
  struct Case {
    std::uint32_t reg;
    std::uint16_t length;
    const char* bytes;
    const char* trace;
  };
  constexpr Case kCases[] = {
      {0x0E000010, 5, "1112131415", "fpga R 0x700010 x5\n"},
      {0x0E002000, 2, "2122", "fpga R 0x702000 x2\n"},  // not what is stored there
      {0x0E2003FF, 1, "31", "fpga R 0x7203ff x1\n"},
      {0x0E102004, 2, "0000", "fpga R 0x712004 x2\n"},
      {0x0E300000, 1, "0a", "flash R 0xd12000 x1\n"},
      {0x0E302000, 1, "0c", "flash R 0xd13000 x1\n"},
      {0x0E302000, 2, "0000", ""},
      {0x0E004000, 3, "000000", ""},
      {0x0E001FFF, 1, "00", ""},
  };
  support::Trace trace;
  for (const Case& c : kCases) {
    const auto reply = inprocess::Read(c.reg, c.length);
    EXPECT_EQ(device::Hex(reply.m_data), c.bytes) << std::hex << c.reg;
    EXPECT_EQ(trace.Take(), c.trace) << std::hex << c.reg;
  }
}

// A cut at any write of an upload to a fresh store leaves each colour whole or untagged.
TEST(RGBGammaDeathTest, CutLeavesNoTagWithoutItsTable) {
  device::Begin("none");
  const GammaTable bytes = PowerTable(2.2, 10);
  const std::string whole = device::Hex(bytes);
  int tagged = 0;
  for (int write = 1; write <= 27; ++write) {
    for (const auto& table : rgbgamma::TablesOf(Set::k10Bit)) {
      device::PutFlash(table.tag, "ffffffff");
      device::PutFlash(table.flash, std::string(16384, 'f').c_str());
    }
    SetFaultCount(Fault::kFlashCut, write);
    EXPECT_EXIT((Upload(Set::k10Bit, bytes), exit(0)), testing::ExitedWithCode(75), "");
    for (const auto& table : rgbgamma::TablesOf(Set::k10Bit)) {
      if (device::Flash(table.tag, 4) != kTag) continue;
      ++tagged;
      EXPECT_EQ(device::Flash(table.flash, 8192), whole) << write;
    }
  }
  EXPECT_EQ(tagged, 9 + 2 * 9);  // red from write 10 on, green from 19 on, blue's own tag torn
}

}  // namespace
}  // namespace ZEPH_MCUC
