// The FPGAs' cells over the bus: what moves, what the hardware keeps for itself, what is refused.
#include <gtest/gtest.h>
#include <platform/fpga.h>

#include <array>
#include <cstring>

#include "board/cells.h"
#include "board/files.h"
#include "support/board_kit.h"

namespace board {
namespace {

using board_kit::Configure;
using board_kit::TraceLines;
using Bytes = std::vector<std::uint8_t>;

Bytes Read(int index, std::uint32_t address, std::uint32_t length) {
  Bytes data(length, 0xEE);
  EXPECT_EQ(ReadFPGABlock(static_cast<std::uint8_t>(index), address, length, data.data()), 0);
  return data;
}

TEST(BoardFpga, CellsLieInTheFileAtTheirAddress) {
  const Bytes data = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13};
  for (const std::uint32_t address : {0x500003U, 0x1200000U, 0x2500020U, 0xFF600001U}) {
    ASSERT_EQ(WriteFPGABlock(1, address, 13, data.data()), 0);
    EXPECT_EQ(Read(1, address % kCellCount, 13), data);
    EXPECT_EQ(Read(0, address, 13), Bytes(13, 0)) << "the other FPGA";
    const auto file = *ReadWhole(Folder() / "fpga/1.mem");
    EXPECT_EQ(std::memcmp(file.data() + address % kCellCount, data.data(), 13), 0);
  }
}

TEST(BoardFpga, RunsOnFromTheLastCellToTheFirst) {
  const Bytes data = {1, 2, 3, 4};
  ASSERT_EQ(WriteFPGABlock(0, kCellCount - 2, 4, data.data()), 0);
  EXPECT_EQ(Read(0, kCellCount - 2, 2), (Bytes{1, 2}));
  EXPECT_EQ(Read(0, 0, 2), (Bytes{3, 4}));
  EXPECT_EQ(Read(0, 0xFFFFFFFE, 4), data);
}

TEST(BoardFpga, StatusCellsAreTheHardwares) {
  Configure("port.0.cards=0\nport.0.multi=0\nport.1.cards=0\n");
  const std::vector<std::pair<int, int>> kStatus = {
      {0x17, 0x17},   {0x1E, 0x1F},         {0x46, 0x49},        {0x9E, 0x9F},
      {0x120, 0x121}, {0x126, 0x127},       {0x1D7, 0x1D7},      {0x1E0, 0x1E1},
      {0x1F2, 0x1FB}, {0xF04000, 0xF04003}, {0xF05100, 0xF05103}};
  for (const std::uint32_t base : {0U, 0xF04000U - 0x20, 0xF05100U - 0x20, kCellCount}) {
    const Bytes ones(0x210, 0xFF);
    ASSERT_EQ(WriteFPGABlock(1, base, 0x210, ones.data()), 0);
    const auto got = Read(1, base, 0x210);
    for (std::uint32_t i = 0; i < got.size(); ++i) {
      const auto cell = static_cast<int>((base + i) % kCellCount);
      const bool status = std::any_of(kStatus.begin(), kStatus.end(), [&](const auto& range) {
        return range.first <= cell && cell <= range.second;
      });
      EXPECT_EQ(got[i], status ? 0 : 0xFF) << std::hex << cell;
    }
  }
}

TEST(BoardFpga, RefusesWhatIsNotThereAndTracesIt) {
  Configure("trace = fpga");
  Bytes data = {0xAB, 0xCD};
  EXPECT_EQ(WriteFPGABlock(2, 0x10, 2, data.data()), -1);
  EXPECT_EQ(ReadFPGABlock(0, 0x10, 2, nullptr), -1);
  EXPECT_EQ(WriteFPGABlock(1, 0xABCDEF01, 2, data.data()), 0);
  SetFaultCount(Fault::kFpgaRead, 1);
  EXPECT_EQ(ReadFPGABlock(1, 0x40, 2, data.data()), -1);
  EXPECT_EQ(data, (Bytes{0xAB, 0xCD})) << "a failed read moves nothing";
  EXPECT_EQ(ReadFPGABlock(1, 0xABCDEF02, 2, data.data()), 0);
  const std::vector<std::string> wanted = {
      "fpga W 2 0x00000010 2 fail -", "fpga R 0 0x00000010 2 fail -",
      "fpga W 1 0xabcdef01 2 ok abcd", "fpga R 1 0x00000040 2 fail -",
      "fpga R 1 0xabcdef02 2 ok cd00"};
  EXPECT_EQ(TraceLines(), wanted);
}

}  // namespace
}  // namespace board
