#include "proto/mosaic_advanced.h"

#include <gtest/gtest.h>

#include "support/slow_mosaic.h"

namespace ZEPH_MCUC {
namespace {

constexpr CardSize kCard{128, 128};

TEST(MosaicAdvanced, RecordByteByByte) {
  std::array<uint8_t, shortcut::kPortRecordSize> record{};
  const AdvancedPort empty = ReadAdvancedPort(record);
  EXPECT_EQ(empty.cabinets(), 1U) << "an empty record is one cabinet";

  record[1] = 5;
  record[6] = 22;
  record[7] = 23;
  record[10] = 0x34, record[11] = 0x12;
  record[12] = 0x78, record[13] = 0x56;
  const AdvancedPort port = ReadAdvancedPort(record);
  EXPECT_EQ((std::array<int, 5>{port.mode, port.rows, port.columns, port.x, port.y}),
            (std::array<int, 5>{5, 22, 23, 0x1234, 0x5678}));
}

TEST(MosaicAdvanced, Limits) {
  const auto within = [](std::size_t ports, AdvancedPort port) {
    AdvancedPorts all;
    std::fill_n(all.begin(), ports, port);
    return WithinLimits(all);
  };
  EXPECT_FALSE(within(1, {.rows = 23, .columns = 23})) << "529 on a port";
  EXPECT_TRUE(within(1, {.rows = 22, .columns = 23}));
  EXPECT_FALSE(within(10, {.rows = 41, .columns = 5})) << "2050 on all";
  EXPECT_TRUE(within(10, {.rows = 51, .columns = 4})) << "2040 on all";
}

TEST(MosaicAdvanced, TwoPortsSideBySide) {
  AdvancedPorts ports;
  ports[0] = {.rows = 2, .columns = 2};
  ports[1] = {.rows = 2, .columns = 2, .x = 256};
  const Extent screen = ScreenOfPorts(ports, kCard);
  EXPECT_EQ(screen.width, 512U);
  EXPECT_EQ(screen.height, 256U);
  const AdvancedPlan plan = PlanAdvanced(ports, kCard);
  EXPECT_EQ(plan.realWidth, 256) << "the largest window, not the screen";
  EXPECT_EQ(plan.realHeight, 256);
  EXPECT_EQ(plan.windows[1], (PortWindow{256, 256, 256, 0}));
  EXPECT_EQ(plan.windows[2], (PortWindow{128, 128, 0, 0}));
  EXPECT_EQ(plan.cards[1], 4);
  EXPECT_EQ(plan.cards[9], 1);
}

TEST(MosaicAdvanced, SizesThatDontFit) {
  AdvancedPorts ports;
  ports[0] = {.rows = 2, .columns = 3, .x = 65535, .y = 65000};
  EXPECT_EQ(ScreenOfPorts(ports, {30001, 600}).width, 65535U + 90003U) << "not cut to 16 bits";
  const AdvancedPlan plan = PlanAdvanced(ports, {30001, 600});
  EXPECT_EQ(plan.windows[0].width, uint16_t(90003)) << "cut to 16 bits";
  EXPECT_EQ(plan.setWidth, 30001) << "of the other ports";
  EXPECT_EQ(plan.realWidth, 30002);
}

TEST(MosaicAdvanced, TablesOfAllModes) {
  for (uint8_t mode = 0; mode < 9; ++mode) {
    SCOPED_TRACE(int{mode});
    std::array<uint8_t, kPositionBlock> table{};
    table.fill(0xEE);
    const Cable cable = CableOfPort({.mode = mode, .rows = 3, .columns = 5}, {100, 60});
    ASSERT_EQ(FillPositionTable(cable, table), 68U * 15 * 4);
    const auto walk = slow_mosaic::Walk(mode, 5, 3);
    for (std::size_t entry = 0; entry < 1020; ++entry) {
      const slow_mosaic::Spot spot = mode < 8 ? walk[entry % 15] : slow_mosaic::Spot{0, 0};
      ASSERT_EQ(table[4 * entry] | table[4 * entry + 1] << 8, spot.x * 100) << entry;
      ASSERT_EQ(table[4 * entry + 2] | table[4 * entry + 3] << 8, spot.y * 60) << entry;
    }
    EXPECT_EQ(table[4080], 0xEE) << "the rest is left alone";
  }
}

}  // namespace
}  // namespace ZEPH_MCUC
