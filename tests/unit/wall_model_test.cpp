#include "wall/model.h"

#include <gtest/gtest.h>

#include "support/wall_bytes.h"
#include "wall/apply.h"

namespace quivord::wall {
namespace {

TEST(WallModel, BytesByHand) {
  auto bytes = std::make_unique<DeviceBytes>();
  const auto put = [](auto& part, std::size_t at, std::initializer_list<std::uint8_t> values) {
    std::copy(values.begin(), values.end(), part.begin() + static_cast<std::ptrdiff_t>(at));
  };
  put(bytes->record, 0, {0xB8});
  put(bytes->record, 0x11, {7, 0, 0, 0, 0, 4, 3, 0x34, 0x12});
  put(bytes->record, 0x50 + 0x40 * 8 + 1, {5, 0, 0, 0, 0, 2, 9, 0, 0, 0x11, 0x22, 0x33, 0x44});
  put(bytes->features, 0x1EC, {0x80, 0x07, 0x38, 0x04});
  put(bytes->features, 0x131, {0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08});
  put(bytes->features, 0x100, {0x80});
  put(bytes->numbers, 0x200, {2, 0});
  put(bytes->positions, 0x8000, {1, 0, 2, 0, 0x00, 0x01, 0xFF, 0xFF});
  put(bytes->cardSize, 0, {0x40, 0x01, 0xB4, 0x00});

  const Wall wall = Understand(*bytes);
  EXPECT_EQ(wall.kind, Kind::kAdvanced);
  EXPECT_EQ(wall.screen, (Size{1920, 1080}));
  EXPECT_EQ(wall.card, (Size{320, 180}));
  EXPECT_EQ(wall.smart, (Smart{.rows = 4, .columns = 3, .perCable = 0x1234, .mode = 7}));
  ASSERT_EQ(wall.ports.size(), 1U) << "ports without a record are left out";
  const Port& port = wall.ports[0];
  EXPECT_EQ(port.number, 8);
  EXPECT_EQ(wall.records[8], (PortRecord{5, 2, 9, 0x2211, 0x4433}));
  EXPECT_EQ(port.window, (ZEPH_MCUC::PortWindow{0x0201, 0x0403, 0x0605, 0x0807}));
  EXPECT_TRUE(port.backup);
  EXPECT_EQ(port.mode, 5);
  EXPECT_EQ(port.cabinets, (std::vector<Corner>{{0x0606, 0x0809}, {0x0705, 0x0807 + 0xFFFF}}));
}

TEST(WallModel, RepeatedPortsAreTold) {
  const auto bytes = wall_bytes::With(Smart{.rows = 5, .columns = 3, .perCable = 6, .mode = 4});
  Wall wall = Understand(*bytes);
  ASSERT_EQ(wall.ports.size(), kPorts);
  EXPECT_EQ(wall.mainPorts(), 3U);
  EXPECT_EQ(wall.cabinets(), 15U);
  for (std::size_t port = 3; port < kPorts; ++port) EXPECT_EQ(wall.ports[port].repeats, port % 3);

  bytes->positions[6 * ZEPH_MCUC::kPositionBlock] ^= 1;  // one card elsewhere: a port of its own
  wall = Understand(*bytes);
  EXPECT_TRUE(wall.ports[6].main());
  EXPECT_EQ(wall.ports[9].repeats, 0);
}

TEST(WallModel, ACountThatNoTableHoldsHasNoCabinets) {
  const auto bytes = wall_bytes::With(Smart{.rows = 1, .columns = 1, .perCable = 1});
  bytes->numbers[0] = 0x01, bytes->numbers[1] = 0x04;  // 1025
  EXPECT_TRUE(Understand(*bytes).ports[0].cabinets.empty());
  bytes->numbers[0] = 0x00;  // 1024
  EXPECT_EQ(Understand(*bytes).ports[0].cabinets.size(), 1024U);
}

TEST(WallModel, DifferenceNamesWhatIsNotThereYet) {
  const Smart old{.rows = 4, .columns = 3, .perCable = 5, .mode = 0};
  const auto found = wall_bytes::With(old);
  const auto after = [&found](auto change) {
    auto wanted = std::make_unique<DeviceBytes>(*found);
    change(*wanted);
    return Difference(*found, *wanted).value_or("");
  };
  EXPECT_EQ(after([&](auto& bytes) { ApplySmart(old, bytes); }), "");
  EXPECT_EQ(after([&](auto& bytes) {
              ApplySmart({4, 3, 6, 2}, bytes);
            }),
            "its record says 4 x 3 cabinets, mode 0, 5 a cable");
  EXPECT_EQ(after([&](auto& bytes) {
              ApplyAdvanced({PortRecord{0, 2, 2, 0, 0}}, bytes);
            }),
            "its wall is smart, not advanced");
  EXPECT_EQ(after([](auto& bytes) { bytes.features[0x53] = 0x80; }),
            "port 0 has 6 cards in 384 x 256 at 0, 0, not port 0 has 6 cards in 384 x 384 at 0, 0");
  EXPECT_EQ(after([](auto& bytes) { bytes.positions[0x1000 + 4] ^= 1; }),
            "the cabinets of port 1 lie elsewhere");
  EXPECT_EQ(after([](auto& bytes) { bytes.features[0x25] = 9; }), "its sizes or tables are others");
}

}  // namespace
}  // namespace quivord::wall
