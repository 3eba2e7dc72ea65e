#include "proto/mosaic.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <ostream>
#include <random>
#include <sstream>

#include "support/slow_mosaic.h"

namespace ZEPH_MCUC {

void PrintTo(const MosaicInput& wall, std::ostream* out) {
  *out << wall.rows << " rows, " << wall.columns << " columns, box number " << wall.boxNumber
       << ", mode " << int{wall.mode} << ", cards " << wall.cardWidth << 'x' << wall.cardHeight;
}

namespace {

using Tables = std::array<uint8_t, kPositionSize>;

MosaicInput Wall(uint16_t rows, uint16_t columns, uint16_t boxNumber, uint8_t mode,
                 uint16_t width = 128, uint16_t height = 128) {
  return {rows, columns, boxNumber, mode, width, height};
}

constexpr uint8_t kStale = 0xEE;  // what the tables hold before

TEST(Mosaic, ValidityOfLimits) {
  const std::pair<MosaicInput, bool> cases[] = {
      {Wall(4, 4, 1, 0), true},  // 16 cables
      {Wall(4, 5, 1, 0), false},
      {Wall(2, 2, 4, 0), true},  // exactly one cable
      {Wall(2, 2, 5, 0), false},
      {Wall(255, 255, 4065, 0), true},  // 16 times the box number passes 16 bits
      {Wall(255, 255, 4064, 0), false},
      {Wall(0, 4, 1, 0), false},
      {Wall(4, 0, 1, 1), false},
      {Wall(0, 0, 0, 0), false},  // 0 is neither too few nor too many
      {Wall(4, 4, 4, 0, 0, 128), false},
      {Wall(4, 4, 4, 0, 128, 0), false},
      {Wall(65535, 65535, 65535, 0), false},  // more cabinets than a count can hold
  };
  for (const auto& [wall, valid] : cases) {
    EXPECT_EQ(PlanMosaic(wall).valid, valid) << testing::PrintToString(wall);
  }
}

// Screen, stripes and the first four ports, each with its corner and its cabinets.
std::string Told(const MosaicPlan& plan) {
  std::ostringstream text;
  text << plan.setWidth << '/' << plan.realWidth << 'x' << plan.realHeight << ", "
       << int{plan.usedPorts} << " of " << plan.windows[0].width << 'x' << plan.windows[0].height;
  for (std::size_t port = 0; port < 4; ++port) {
    text << ", " << plan.windows[port].x << ' ' << plan.windows[port].y << ':' << plan.cards[port];
  }
  return text.str();
}

TEST(Mosaic, WallsReckonedByHand) {
  const std::pair<MosaicInput, const char*> cases[] = {
      {Wall(4, 3, 5, 0), "384/384x512, 2 of 384x256, 0 0:6, 0 256:6, 0 0:6, 0 256:6"},
      {Wall(5, 3, 6, 4), "384/384x640, 3 of 384x256, 0 384:6, 0 128:6, 0 0:3, 0 384:6"},
      {Wall(3, 5, 6, 7), "640/640x384, 3 of 256x384, 384 0:6, 128 0:6, 0 0:3, 384 0:6"},
      {Wall(3, 5, 6, 1), "640/640x384, 3 of 256x384, 0 0:6, 256 0:6, 512 0:3, 0 0:6"},
      {Wall(1, 3, 3, 0, 85, 64), "255/256x64, 1 of 255x64, 0 0:3, 0 0:3, 0 0:3, 0 0:3"},
      {Wall(5, 3, 6, 8), "384/384x640, 3 of 384x256, 0 0:6, 0 0:6, 0 0:3, 0 0:6"},
      {Wall(16, 1, 1, 6), "128/128x2048, 16 of 128x128, 0 0:1, 0 0:1, 0 0:1, 0 0:1"},
      {Wall(1, 1, 1, 0, 65535, 7), "65535/0x7, 1 of 65535x7, 0 0:1, 0 0:1, 0 0:1, 0 0:1"},
  };
  for (const auto& [wall, told] : cases) EXPECT_EQ(Told(PlanMosaic(wall)), told);
}

// The list of a cable's cards as often as it fits whole.
void ListCards(const MosaicInput& wall, int width, int height, uint8_t* block) {
  const int cards = width * height;
  if (wall.mode >= 8 || cards > int{kPositionEntries}) return;
  const auto cable = slow_mosaic::Walk(wall.mode, width, height);
  for (int entry = 0; entry < int{kPositionEntries} / cards * cards; ++entry) {
    const int x = cable[static_cast<std::size_t>(entry % cards)].x * wall.cardWidth;
    const int y = cable[static_cast<std::size_t>(entry % cards)].y * wall.cardHeight;
    for (const int byte : {x, x / 256, y, y / 256}) *block++ = static_cast<uint8_t>(byte);
  }
}

// The wall, cut and walked the slow way, against the plan.
void ExpectSame(const MosaicInput& wall, const MosaicPlan& plan, const Tables& tables) {
  const bool columns = wall.mode % 2 == 1;
  const int length = columns ? wall.rows : wall.columns;
  const int card = columns ? wall.cardWidth : wall.cardHeight;
  const int across = length * (columns ? wall.cardHeight : wall.cardWidth);
  const bool backward =
      columns ? slow_mosaic::FromRight(wall.mode) : slow_mosaic::FromBottom(wall.mode);
  const auto stripes =
      slow_mosaic::Stripes(columns ? wall.columns : wall.rows, length, wall.boxNumber);
  const bool fit = stripes.size() <= kTablePorts;
  ASSERT_EQ(plan.usedPorts, stripes.size());
  EXPECT_EQ(plan.setWidth, uint16_t(wall.columns * wall.cardWidth));
  EXPECT_EQ(plan.realWidth, uint16_t(plan.setWidth + plan.setWidth % 2));
  EXPECT_EQ(plan.realHeight, uint16_t(wall.rows * wall.cardHeight));
  EXPECT_EQ(plan.outOfTables,
            !fit && wall.mode < 8 && stripes.back() * length <= int{kPositionEntries});
  Tables expected;
  expected.fill(kStale);
  for (std::size_t port = 0; port < kTablePorts; ++port) {
    const std::size_t stripe = fit ? port % stripes.size() : 0;
    int before = 0;  // lines between the screen's edge and this stripe
    for (std::size_t other = 0; other < stripes.size(); ++other) {
      if (backward ? other > stripe : other < stripe) before += stripes[other];
    }
    PortWindow window{uint16_t(across), uint16_t(stripes[0] * card)};
    if (columns) std::swap(window.width, window.height);
    if (fit && wall.mode < 8) (columns ? window.x : window.y) = uint16_t(before * card);
    EXPECT_EQ(plan.windows[port], window) << "port " << port;
    EXPECT_EQ(plan.cards[port], stripes[stripe] * length) << "port " << port;
    uint8_t* const block = &expected[port * kPositionBlock];
    if (port >= stripes.size()) {
      std::copy_n(&expected[stripe * kPositionBlock], kPositionBlock, block);
    } else {
      ListCards(wall, columns ? stripes[port] : length, columns ? length : stripes[port], block);
    }
  }
  const auto differs = std::mismatch(expected.begin(), expected.end(), tables.begin()).first;
  EXPECT_EQ(differs - expected.begin(), kPositionSize) << "the tables differ there";
}

class RandomWalls {
 public:
  MosaicInput Next() {
    MosaicInput wall;
    const int most = Chance(20) ? 255 : 48;
    wall.rows = Number(1, most);
    wall.columns = Number(1, most);
    const int cabinets = wall.rows * wall.columns;
    wall.boxNumber = Number(1, Chance(5) ? cabinets : std::max(1, cabinets / Number(1, 16)));
    wall.mode = static_cast<uint8_t>(Chance(30) ? Number(8, 255) : Number(0, 7));
    wall.cardWidth = Chance(10) ? Number(0, 65535) : Number(1, 512);
    wall.cardHeight = Chance(10) ? Number(0, 65535) : Number(1, 512);
    return wall;
  }

 private:
  bool Chance(int oneIn) { return Number(1, oneIn) == 1; }
  uint16_t Number(int least, int most) {
    return static_cast<uint16_t>(std::uniform_int_distribution<int>(least, most)(random_));
  }

  std::mt19937 random_{20};
};

// Walls whose tables end early, are not repeated, or are not written at all.
const MosaicInput kOddWalls[] = {Wall(16, 1, 1, 0),      Wall(12, 3, 3, 2),
                                 Wall(16, 1, 1, 8),      Wall(255, 255, 5100, 0),
                                 Wall(42, 100, 2000, 0), Wall(41, 32, 1024, 0)};

TEST(Mosaic, AgreesWithASlowSecondForm) {
  constexpr std::size_t kWalls = 100000;
  RandomWalls random;
  auto tables = std::make_unique<Tables>();
  std::size_t made = 0, crowded = 0;
  for (std::size_t n = 0; n < kWalls;) {
    const MosaicInput wall = n < std::size(kOddWalls) ? kOddWalls[n] : random.Next();
    const MosaicPlan plan = PlanMosaic(wall);
    tables->fill(kStale);
    FillPositionTables(plan, *tables);
    if (!plan.valid) {
      ASSERT_EQ((*tables)[0], kStale) << "a refused wall changes nothing";
      continue;
    }
    ++n;
    SCOPED_TRACE(testing::Message() << "wall " << n << ": " << testing::PrintToString(wall));
    ExpectSame(wall, plan, *tables);
    if (HasFailure()) return;
    made += plan.usedPorts > 1 && plan.usedPorts <= kTablePorts;
    crowded += plan.outOfTables;
  }
  EXPECT_GT(made, kWalls / 2);
  EXPECT_GT(crowded, kWalls / 20);
}

}  // namespace
}  // namespace ZEPH_MCUC
