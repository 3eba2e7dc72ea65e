// Reads of the feature space: when they come from the FPGA, and what they show in place of the
// image.
#include <gtest/gtest.h>
#include <platform/system.h>

#include "board/files.h"
#include "support/board_kit.h"
#include "support/device.h"
#include "support/inprocess.h"
#include "support/trace.h"

namespace {

using namespace ZEPH_MCUC;
using device::Global;
using device::Image;

constexpr std::uint32_t kBase = 0x02000000;

TEST(FeatureRead, IsBroughtUpToDateFromTheFpgaWhereItReachesPastTheBusPage) {
  struct Case {
    std::uint32_t offset;
    std::uint16_t length;
    const char* refresh;
  };
  constexpr Case kCases[] = {
      {0x1E8, 8, ""},  {0x1E8, 9, "fpga R 0x1e8 x8\n"}, {0x1EC, 5, "fpga R 0x1ec x4\n"},
      {0x1ED, 19, ""}, {0, 512, "fpga R 0x0 x496\n"},
  };
  device::Begin("fpga");
  for (const Case& c : kCases) {
    device::PutImage(0x1EC, "00040003");
    device::PutFpga(0x1EC, "11223344");
    device::PutFpga(0x1F0, "55");
    support::Trace trace;
    const auto reply = inprocess::Read(kBase + c.offset, c.length);
    EXPECT_EQ(trace.Take(), c.refresh) << std::hex << c.offset;
    EXPECT_EQ(reply.m_data.size(), c.length);
    EXPECT_EQ(Image(0x1EC, 5), *c.refresh == '\0' ? "0004000300" : "1122334400");
  }
}

TEST(FeatureRead, ShowsForcedBytesTheClockAndLinksBehindTheFibers) {
  device::Begin("none");
  device::PutImage(0x1EC, "00040003");
  const timeval time{1'709'441'999, 0};
  platform::SetTimeOfDay(&time, nullptr);
  device::PutImage(0x00, "1111111111111111111111111111111111");
  device::PutImage(0x1F, "01");
  device::PutImage(0x126, "8002");
  Global().Fiber1BelowLinkStatus_buff.setU16(0, 0x1234);
  Global().Fiber2BelowLinkStatus_buff.setU16(0, 0x8042);
  EXPECT_EQ(device::Hex(inprocess::Read(kBase, 0x20).m_data),
            "11ffffffffffffffffffff1111ffff0000"
            "240303045959"
            "000000000000000007");
  EXPECT_EQ(device::Hex(inprocess::Read(kBase + 0x9F, 1).m_data), "07");
  device::PutImage(0x4B, "77");
  EXPECT_EQ(device::Hex(inprocess::Read(kBase + 0x4B, 1).m_data), "00");
  EXPECT_EQ(device::Hex(inprocess::Read(kBase + 0x126, 2).m_data), "820b");
}

// A client reads the page while the work thread is between the image and the FPGA.
TEST(FeatureRead, LeavesAloneWhatAWriteIsAboutToChange) {
  device::Begin("none");
  device::PutFpga(0x3E, "010203");
  device::PutFpga(0x1EC, "00040003");
  const std::uint8_t written = 0x77;
  Global().BeginFeatureWrite(0x3F, {&written, 1});
  EXPECT_EQ(device::Hex(inprocess::Read(kBase, 512).m_data).substr(2 * 0x3E, 6), "017703");
  Global().EndFeatureWrite();
  inprocess::Read(kBase, 512);
  EXPECT_EQ(Image(0x3E, 3), "010203");
}

TEST(FeatureRead, LeavesATrailWhereTheScreenHasNoSize) {
  device::Begin("shell");
  inprocess::Read(kBase + 0x45, 1);
  EXPECT_EQ(board::ReadWhole(board_kit::Named() / "root/screen_zero.txt"),
            "Point:10 ,use adddr:0x2000045, wide:0 high:0, "
            "description:ReadFromFeatureInfo, Read FPGA para!!\n");
}

}  // namespace
