// The screen pattern generator: phases, and what is sent in which order.
#include <gtest/gtest.h>

#include "board/faults.h"
#include "support/device.h"
#include "support/inprocess.h"
#include "support/trace.h"

namespace ZEPH_MCUC {
namespace {

constexpr std::uint32_t kBase = 0x12010000;

int Write(std::uint32_t offset, const char* hex) {
  const auto reply = inprocess::Write(kBase + offset, inprocess::Bytes(hex));
  inprocess::DrainQueue();
  return reply.m_ucAck;
}

std::string Image(std::uint32_t offset, std::size_t length) {
  std::vector<std::uint8_t> bytes(length);
  device::Global().HardwareScreenGenReg.read(offset, bytes);
  return device::Hex(bytes);
}

constexpr char kSent[] =
    "fpga R 0x2c x2\nfpga R 0x26 x2\nfpga W 0xa00000 x27\nfpga W 0xa0001c x29\n"
    "fpga W 0xa0001b a8\nfpga W 0xa0001b 00\n";

TEST(Pattern, WriteSendsTheWholeBlockThenStrobes) {
  device::Begin("fpga");
  device::PutFpga(0x2C, "8007");
  device::PutFpga(0x26, "3804");
  support::Trace trace;
  // Pixels every 8 by 10, the first at 3, 4.
  EXPECT_EQ(Write(0, "0102eeeeeeee060708090a0b0c0d03000400"), 0);
  EXPECT_EQ(trace.Take(), kSent);
  EXPECT_EQ(Write(0x20, "0108000a00"), 0);
  EXPECT_EQ(trace.Take(), kSent);
  EXPECT_EQ(device::Fpga(0xA00000, 18),
            "0102800738040607"
            "08090a0b0c0d03000400");
  EXPECT_EQ(device::Fpga(0xA00020, 9), "0108000a0005000600");
  EXPECT_EQ(device::Fpga(0xA0001B, 1), "00");
  EXPECT_EQ(Image(0x20, 9), "0108000a0005000600");
  EXPECT_EQ(Write(0x21, "07"), 0);  // one field alone
  EXPECT_EQ(device::Fpga(0xA00020, 9), "0107000a0004000600");
  EXPECT_EQ(Write(0x1B, "ff"), 0);  // the strobe isn't a client's
  EXPECT_EQ(device::Fpga(0xA0001B, 1), "00");
}

TEST(Pattern, TypesSetTheirOwnPhasesAndNoOthers) {
  struct Case {
    const char* first;  // at 0x0E
    const char* type;   // at 0x20, with both intervals
    const char* block;  // at 0x31, width and height
    const char* pixel_phases;
    const char* block_places;  // offsets and phases
    bool logged;
  };
  static constexpr char kOldPixel[] = "e1e2e3e4";
  constexpr Case kCases[] = {
      {"03000400", "0108000a00", "10002000", "05000600", "d1d2d3d4d5d6d7d8", false},
      {"08000400", "0108000a00", "10002000", "00000000", "d1d2d3d4d5d6d7d8", true},
      {"05001100", "0208000a00", "10001000", kOldPixel, "010002000b000f00", false},
      {"fbff0000", "0208000a00", "10001000", kOldPixel, "0000000005000000", false},
      {"f0ff0500", "0208000a00", "10001000", kOldPixel, "0000010000000b00", true},
      {"03000400", "0008000a00", "00000000", kOldPixel, "d1d2d3d4d5d6d7d8", false},
  };
  device::Begin("fpga");
  device::Log log(0);
  auto& image = device::Global().HardwareScreenGenReg;
  for (const Case& c : kCases) {
    SCOPED_TRACE(testing::Message() << c.first << ' ' << c.type);
    image.write(0x0E, inprocess::Bytes(c.first));
    image.write(0x25, inprocess::Bytes(kOldPixel));
    image.write(0x2D, inprocess::Bytes("d1d2d3d4"));
    image.write(0x31, inprocess::Bytes(c.block));
    image.write(0x35, inprocess::Bytes("d5d6d7d8"));
    support::Trace trace;
    Write(0x20, c.type);
    EXPECT_EQ(trace.Take(), kSent);
    EXPECT_EQ(device::Fpga(0xA00025, 4), c.pixel_phases);
    EXPECT_EQ(device::Fpga(0xA0002D, 4) + device::Fpga(0xA00035, 4), c.block_places);
    EXPECT_EQ(log.Take(),
              c.logged ? "Error negative offset or out of range, invalid parameter\n" : "");
  }
}

TEST(Pattern, BlockOfNoSizeIsNotSentUntilItHasOne) {
  device::Begin("fpga");
  device::Log log(0);
  support::Trace trace;
  Write(0x20, "02");
  Write(0x31, "1000");
  EXPECT_EQ(support::Count(trace.Take(), "fpga W"), 0);
  EXPECT_EQ(log.Take(),
            "Error === ScreenPatternGenProcess ===block of no width or height, not sent\n"
            "Error === ScreenPatternGenProcess ===block of no width or height, not sent\n");
  Write(0x33, "1000");
  EXPECT_EQ(trace.Take(), kSent);
  EXPECT_EQ(device::Fpga(0xA00020, 1), "02");
}

TEST(Pattern, ReadTakesTheFpgaOverIntoTheImage) {
  device::Begin("none");
  Write(0x06, "666768");
  device::PutFpga(0xA00006, "a6a7a8");
  EXPECT_EQ(device::Hex(inprocess::Read(kBase + 0x06, 2).m_data), "a6a7");
  EXPECT_EQ(Image(0x06, 3), "a6a768");
  board::SetFaultCount(board::Fault::kFpgaRead, 3);
  EXPECT_TRUE(inprocess::Read(kBase + 0x06, 3).m_data.empty());
  EXPECT_EQ(Image(0x06, 3), "a6a768");
}

}  // namespace
}  // namespace ZEPH_MCUC
