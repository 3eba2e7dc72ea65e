// Output timing, its clock, and the preview window that follows the source.
#include <gtest/gtest.h>

#include "board/faults.h"
#include "process/PwvConfig.h"
#include "process/tprocess_ctl.h"
#include "support/device.h"
#include "support/rounds.h"
#include "support/trace.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint32_t kFirstOutput = 0x1300000;
constexpr uint32_t kFrontScaler = 0xF00000;
constexpr uint32_t kBackScaler = 0xF00040;

TEST(OutputResSet, SetsClockThenTimingThenStrobe) {
  device::Begin("fpga clockchip");
  support::Trace trace;
  OutputResSet(0, 1920, 1080, 6000);
  EXPECT_EQ(trace.Take(),
            "clockchip 49 69513600 2 3\n"
            "fpga W 0x1300000 x17\n"
            "fpga W 0x100051 08\n"
            "fpga R 0x1300000 x17\n");
  EXPECT_EQ(device::Fpga(kFirstOutput, 17),
            device::Fields("00 1004 5a04 1000 0500 3800 0b00 f803 4304"));
  // Six steps, three of each kind; the other output has the chip's other clock.
  OutputResSet(1, 800, 600, 6000);
  EXPECT_EQ(trace.Take().substr(0, 26), "clockchip 33 43664400 1 3\n");
  EXPECT_EQ(device::Fpga(kFirstOutput + 0x1000, 17),
            device::Fields("00 0c03 a503 1000 0400 6401 3601 f402 8e03"));
  // The clock follows the exact rate, the floor whole hertz.
  OutputResSet(0, 1920, 1080, 5994);
  EXPECT_EQ(trace.Take().substr(0, 26), "clockchip 49 69444086 2 3\n");
  board::SetFaultCount(board::Fault::kClockChip, 1);
  OutputResSet(0, 1920, 1080, 6000);
  EXPECT_EQ(support::Count(trace.Take(), "fpga W"), 2) << "also without a clock";
}

// Whatever the size and rate, the clock ends at 40 MHz or above, and active video is as large as
// asked for. Sums past 16 bits wrap as the image's fields do.
TEST(OutputTiming, ReachesItsLeastClock) {
  support::Random random(85);
  for (int i = support::Rounds(20000); i > 0; --i) {
    const auto width = static_cast<uint16_t>(random(1, 65535));
    const auto height = static_cast<uint16_t>(random(1, 65535));
    const auto rate = static_cast<unsigned>(random(100, 60000));
    const auto timing = CalculateOutput(width, height, rate);
    ASSERT_TRUE(timing.has_value()) << width << " " << height << " " << rate;
    const _OutputResPara& para = timing->para;
    const uint32_t clock = rate / 100 * para.VsTotal * para.HsTotal;
    ASSERT_GE(clock, 40000000U);
    ASSERT_EQ(uint16_t(para.VsDeEnd - para.VsDeStart), height);
    ASSERT_NEAR(uint16_t(para.HsDeEnd - para.HsDeStart), width / 2, width < 65000 ? 1 : 32768);
    ASSERT_GE(timing->clock_hz, 0.98 * clock);
  }
}

class Preview : public testing::Test {
 protected:
  void SetUp() override {
    device::Begin("fpga");
    PutSource("80073804");
  }

  static void PutSource(const char* size) {
    device::PutFpga(0x17, "01");
    device::PutFpga(0x46, size);
  }

  std::string Poll() {
    Tprocess_ctl::getInstance()->Monitorprcoess();
    return trace_.Take();
  }

  support::Trace trace_;
};

constexpr char kLook[] = "fpga R 0x17 x1\nfpga R 0x46 x4\n";
constexpr char kReadBack[] = "fpga R 0xf00000 x38\nfpga R 0xf00040 x42\n";
const std::string kUpdate = std::string(kLook) +
                            "fpga W 0xf00000 x38\nfpga W 0xf00040 x42\nfpga W 0x100051 04\n" +
                            kReadBack;

// What both scalers' images begin with where all of the source goes onto all of the window.
constexpr char kPassing[] =
    "01 00000100 00000100 00000000 00000000 8007 3804 8007 3804 0000 0000 00 00 0000 0000c007";

TEST_F(Preview, UpdatesOnceForASize) {
  EXPECT_EQ(Poll(), kUpdate);
  EXPECT_EQ(Poll(), kLook);
  EXPECT_EQ(device::Fpga(kFrontScaler, 38), device::Fields(kPassing) + "00");
  EXPECT_EQ(device::Fpga(kBackScaler, 42), device::Fields(kPassing) + "0000000000");
  PutSource("c0031c02");  // 960 by 540
  EXPECT_EQ(Poll(), kUpdate);
  EXPECT_EQ(device::Fpga(kFrontScaler + 17, 8), "c0031c02c0031c02");
  EXPECT_EQ(device::Fpga(kBackScaler + 17, 8), "c0031c0280073804");
}

TEST_F(Preview, KeepsTheWindowWithoutASource) {
  device::PutFpga(0x17, "02");
  EXPECT_EQ(Poll(), "fpga R 0x17 x1\n");
  device::PutFpga(0x17, "00");
  EXPECT_EQ(Poll(), "fpga R 0x17 x1\n");
  board::SetFaultCount(board::Fault::kSkip, 1);
  board::SetFaultCount(board::Fault::kFpgaRead, 3);
  device::PutFpga(0x17, "01");
  EXPECT_EQ(support::Count(Poll(), "fpga W"), 0) << "a size that can't be read is none";
  EXPECT_EQ(Poll(), kUpdate);
}

TEST_F(Preview, SizeThatCantBeShownIsTriedOnce) {
  PutSource("80070000");
  device::Log log;
  EXPECT_EQ(Poll(), std::string(kLook) + kReadBack);
  EXPECT_NE(log.Take().find("ScalerPairConfig faild"), std::string::npos);
  EXPECT_EQ(Poll(), kLook);
}

}  // namespace
}  // namespace ZEPH_MCUC
