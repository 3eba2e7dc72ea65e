#include "proto/mosaic_advanced.h"

#include <gtest/gtest.h>

#include "support/slow_mosaic.h"

namespace ZEPH_MCUC {
namespace {

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
