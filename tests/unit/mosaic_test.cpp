#include "proto/mosaic.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <ostream>
#include <random>

#include "support/slow_mosaic.h"

namespace ZEPH_MCUC {

void PrintTo(const MosaicInput& wall, std::ostream* out) {
  *out << wall.rows << " rows, " << wall.columns << " columns, box number " << wall.boxNumber
       << ", mode " << int{wall.mode} << ", cards " << wall.cardWidth << 'x' << wall.cardHeight;
}

namespace {

using Tables = std::array<uint8_t, kPositionSize>;
using slow_mosaic::Spot;

MosaicInput Wall(uint16_t rows, uint16_t columns, uint16_t boxNumber, uint8_t mode,
                 uint16_t width = 128, uint16_t height = 128) {
  return {rows, columns, boxNumber, mode, width, height};
}

uint16_t WordAt(const uint8_t* bytes) { return static_cast<uint16_t>(bytes[0] | bytes[1] << 8); }

// Entry `entry` of the table of `port`.
Spot EntryAt(const Tables& tables, std::size_t port, std::size_t entry) {
  const uint8_t* at = &tables[port * kPositionBlock + entry * kPositionEntry];
  return {WordAt(at), WordAt(at + 2)};
}

constexpr uint8_t kStale = 0xEE;  // what the tables hold before

std::unique_ptr<Tables> FilledTables(const MosaicPlan& plan) {
  auto tables = std::make_unique<Tables>();
  tables->fill(kStale);
  FillPositionTables(plan, *tables);
  return tables;
}

TEST(Mosaic, ValidityOfLimits) {
  const struct {
    MosaicInput wall;
    bool valid;
  } cases[] = {
      {Wall(4, 4, 1, 0), true},              // 16 cables
      {Wall(4, 5, 1, 0), false},             // 20
      {Wall(2, 2, 4, 0), true},              // exactly one cable
      {Wall(2, 2, 5, 0), false},             // not enough for one
      {Wall(255, 255, 4065, 0), true},       // 16 times the box number passes 16 bits
      {Wall(255, 255, 4064, 0), false},      //
      {Wall(0, 4, 1, 0), false},             //
      {Wall(4, 0, 1, 1), false},             //
      {Wall(0, 0, 0, 0), false},             // 0 is neither too few nor too many
      {Wall(4, 4, 0, 0), false},             //
      {Wall(4, 4, 4, 0, 0, 128), false},     //
      {Wall(4, 4, 4, 0, 128, 0), false},     //
      {Wall(65535, 65535, 65535, 0), false}  // more cabinets than a count can hold
  };
  for (const auto& test : cases) {
    EXPECT_EQ(PlanMosaic(test.wall).valid, test.valid) << testing::PrintToString(test.wall);
  }
}

TEST(Mosaic, KnownWalls) {
  struct Case {
    MosaicInput wall;
    uint16_t realWidth, realHeight, setWidth;
    int usedPorts;
    std::array<uint16_t, 2> windowSize;
    std::array<uint16_t, kTablePorts> offsets;  // along the stacking
    std::array<uint16_t, kTablePorts> cards;
  };
  const Case cases[] = {
      {Wall(4, 3, 5, 0),
       384,
       512,
       384,
       2,
       {384, 256},
       {0, 256, 0, 256, 0, 256, 0, 256, 0, 256},
       {6, 6, 6, 6, 6, 6, 6, 6, 6, 6}},
      {Wall(5, 3, 6, 4),
       384,
       640,
       384,
       3,
       {384, 256},
       {384, 128, 0, 384, 128, 0, 384, 128, 0, 384},
       {6, 6, 3, 6, 6, 3, 6, 6, 3, 6}},
      {Wall(3, 5, 6, 7),
       640,
       384,
       640,
       3,
       {256, 384},
       {384, 128, 0, 384, 128, 0, 384, 128, 0, 384},
       {6, 6, 3, 6, 6, 3, 6, 6, 3, 6}},
      {Wall(3, 5, 6, 1),
       640,
       384,
       640,
       3,
       {256, 384},
       {0, 256, 512, 0, 256, 512, 0, 256, 512, 0},
       {6, 6, 3, 6, 6, 3, 6, 6, 3, 6}},
      {Wall(1, 1, 1, 0), 128, 128, 128, 1, {128, 128}, {}, {1, 1, 1, 1, 1, 1, 1, 1, 1, 1}},
      {Wall(1, 3, 3, 0, 85, 64), 256, 64, 255, 1, {255, 64}, {}, {3, 3, 3, 3, 3, 3, 3, 3, 3, 3}},
      {Wall(3, 4, 1, 0),
       512,
       384,
       512,
       3,
       {512, 128},  // the box number rounds up to a row
       {0, 128, 256, 0, 128, 256, 0, 128, 256, 0},
       {4, 4, 4, 4, 4, 4, 4, 4, 4, 4}},
      {Wall(5, 3, 6, 8),
       384,
       640,
       384,
       3,
       {384, 256},
       {},  // no such mode: no offsets
       {6, 6, 3, 6, 6, 3, 6, 6, 3, 6}},
      {Wall(16, 1, 1, 6),
       128,
       2048,
       128,
       16,
       {128, 128},
       {},  // more ports than tables
       {1, 1, 1, 1, 1, 1, 1, 1, 1, 1}},
      {Wall(1, 1, 1, 0, 65535, 7),
       0,
       7,
       65535,
       1,
       {65535, 7},
       {},  // even beyond 16 bits is 0
       {1, 1, 1, 1, 1, 1, 1, 1, 1, 1}},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(testing::PrintToString(test.wall));
    const MosaicPlan plan = PlanMosaic(test.wall);
    EXPECT_EQ(plan.realWidth, test.realWidth);
    EXPECT_EQ(plan.realHeight, test.realHeight);
    EXPECT_EQ(plan.setWidth, test.setWidth);
    EXPECT_EQ(plan.usedPorts, test.usedPorts);
    EXPECT_EQ(plan.cards, test.cards);
    for (std::size_t port = 0; port < kTablePorts; ++port) {
      PortWindow window{test.windowSize[0], test.windowSize[1], 0, 0};
      (test.wall.mode % 2 == 1 ? window.x : window.y) = test.offsets[port];
      EXPECT_EQ(plan.windows[port], window) << "port " << port;
    }
  }
}

TEST(Mosaic, TablesOfTwoRowsAPort) {
  const MosaicPlan plan = PlanMosaic(Wall(4, 3, 5, 0));
  const auto tables = FilledTables(plan);
  constexpr std::size_t kEntries = 1020;  // 170 lists of six
  const Spot cards[] = {{0, 0}, {128, 0}, {256, 0}, {256, 128}, {128, 128}, {0, 128}};
  for (std::size_t port = 0; port < kTablePorts; ++port) {
    EXPECT_EQ(PositionBytes(plan, port), port < 2 ? kEntries * 4 : kPositionBlock);
    for (std::size_t entry = 0; entry < kEntries; ++entry) {
      ASSERT_EQ(EntryAt(*tables, port, entry), cards[entry % 6]) << port << ' ' << entry;
    }
    EXPECT_EQ(EntryAt(*tables, port, kEntries), (Spot{0xEEEE, 0xEEEE})) << "the rest is left alone";
  }
}

TEST(Mosaic, TablesThatAreNotWritten) {
  const struct {
    MosaicInput wall;
    bool outOfTables;
    std::array<std::size_t, 3> bytes;                                // of ports 0, 1 and 9
  } cases[] = {{Wall(2, 2, 5, 0), false, {0, 0, 0}},                 // refused
               {Wall(5, 3, 6, 8), false, {0, 0, 4096}},              // no such mode, yet repeated
               {Wall(16, 1, 1, 0), true, {4096, 4096, 4096}},        // ends behind port 9
               {Wall(12, 3, 3, 2), true, {4092, 4092, 4092}},        //
               {Wall(16, 1, 1, 8), false, {0, 0, 0}},                // nothing to run out of
               {Wall(255, 255, 5100, 0), false, {0, 0, 0}},          // cables longer than a table
               {Wall(42, 100, 2000, 0), false, {0, 0, 4096}},        // the last one, of 200, fits
               {Wall(41, 32, 1024, 0), false, {4096, 3456, 4096}}};  //
  for (const auto& test : cases) {
    SCOPED_TRACE(testing::PrintToString(test.wall));
    const MosaicPlan plan = PlanMosaic(test.wall);
    EXPECT_EQ(plan.outOfTables, test.outOfTables);
    EXPECT_EQ(PositionBytes(plan, 0), test.bytes[0]);
    EXPECT_EQ(PositionBytes(plan, 1), test.bytes[1]);
    EXPECT_EQ(PositionBytes(plan, 9), test.bytes[2]);
    EXPECT_EQ(PositionBytes(plan, kTablePorts), 0U);
  }
}

TEST(Mosaic, ScreenParametersByteByByte) {
  const std::array<uint8_t, kScreenParaHead> head = {1,    0x55, 0, 0, 0, 0,    0x34, 0x12,
                                                     0x78, 0x56, 4, 3, 7, 0xCD, 0xAB};
  EXPECT_EQ(ScreenParaHead(Wall(4, 3, 0xABCD, 7, 0x1234, 0x5678)), head);
}

// The wall, cut and walked the slow way, against the plan.
class SecondForm {
 public:
  explicit SecondForm(const MosaicInput& wall) : wall_(wall), columns_(wall.mode % 2 == 1) {
    const int lines = columns_ ? wall.columns : wall.rows;
    const int length = columns_ ? wall.rows : wall.columns;
    stripes_ = slow_mosaic::Stripes(lines, length, wall.boxNumber);
  }

  void Check(const MosaicPlan& plan, const Tables& tables) const {
    ASSERT_EQ(plan.usedPorts, stripes_.size());
    EXPECT_EQ(plan.setWidth, uint16_t(wall_.columns * wall_.cardWidth));
    EXPECT_EQ(plan.realWidth, uint16_t(plan.setWidth + plan.setWidth % 2));
    EXPECT_EQ(plan.realHeight, uint16_t(wall_.rows * wall_.cardHeight));
    for (std::size_t port = 0; port < kTablePorts; ++port) {
      const std::size_t stripe = stripes_.size() > kTablePorts ? 0 : port % stripes_.size();
      EXPECT_EQ(plan.windows[port], Window(stripe)) << "port " << port;
      EXPECT_EQ(plan.cards[port], stripes_[stripe] * Length()) << "port " << port;
      CheckTable(tables, port);
    }
    const bool stored = wall_.mode < 8 && stripes_.back() * Length() <= int{kPositionEntries};
    EXPECT_EQ(plan.outOfTables, stripes_.size() > kTablePorts && stored);
  }

 private:
  int Length() const { return columns_ ? wall_.rows : wall_.columns; }

  PortWindow Window(std::size_t stripe) const {
    const int card = columns_ ? wall_.cardWidth : wall_.cardHeight;
    const auto depth = static_cast<uint16_t>(stripes_[0] * card);
    const bool backward =
        columns_ ? slow_mosaic::FromRight(wall_.mode) : slow_mosaic::FromBottom(wall_.mode);
    int before = 0;  // lines between the screen's edge and this stripe
    for (std::size_t other = 0; other < stripes_.size(); ++other) {
      if (backward ? other > stripe : other < stripe) before += stripes_[other];
    }
    const bool placed = wall_.mode < 8 && stripes_.size() <= kTablePorts;
    const auto offset = static_cast<uint16_t>(placed ? before * card : 0);
    if (columns_) return {depth, uint16_t(wall_.rows * wall_.cardHeight), offset, 0};
    return {uint16_t(wall_.columns * wall_.cardWidth), depth, 0, offset};
  }

  void CheckTable(const Tables& tables, std::size_t port) const {
    const uint8_t* const table = &tables[port * kPositionBlock];
    const auto expected =
        port < stripes_.size() ? ListOf(port) : BlockOf(tables, port % stripes_.size());
    const auto differs = std::mismatch(expected.begin(), expected.end(), table).first;
    EXPECT_EQ(differs - expected.begin(), kPositionBlock) << "port " << port << " differs there";
  }

  using Block = std::array<uint8_t, kPositionBlock>;

  static Block BlockOf(const Tables& tables, std::size_t port) {
    Block block;
    std::memcpy(block.data(), &tables[port * kPositionBlock], kPositionBlock);
    return block;
  }

  // The table of a stripe, card by card.
  Block ListOf(std::size_t stripe) const {
    Block block;
    block.fill(kStale);
    const int cards = stripes_[stripe] * Length();
    if (wall_.mode >= 8 || cards > int{kPositionEntries}) return block;
    const int width = columns_ ? stripes_[stripe] : wall_.columns;
    const auto cable = slow_mosaic::Walk(wall_.mode, width, cards / width);
    for (int entry = 0; entry < int{kPositionEntries} / cards * cards; entry += cards) {
      for (int card = 0; card < cards; ++card) {
        uint8_t* const at = &block[static_cast<std::size_t>(entry + card) * kPositionEntry];
        at[0] = static_cast<uint8_t>(cable[card].x * wall_.cardWidth % 256);
        at[1] = static_cast<uint8_t>(cable[card].x * wall_.cardWidth / 256);
        at[2] = static_cast<uint8_t>(cable[card].y * wall_.cardHeight % 256);
        at[3] = static_cast<uint8_t>(cable[card].y * wall_.cardHeight / 256);
      }
    }
    return block;
  }

  MosaicInput wall_;
  bool columns_;
  std::vector<int> stripes_;
};

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

TEST(Mosaic, AgreesWithASlowSecondForm) {
  constexpr int kWalls = 100000;
  RandomWalls walls;
  auto tables = std::make_unique<Tables>();
  int made = 0, crowded = 0;
  for (int n = 0; n < kWalls;) {
    const MosaicInput wall = walls.Next();
    const MosaicPlan plan = PlanMosaic(wall);
    if (!plan.valid) continue;
    ++n;
    SCOPED_TRACE(testing::Message() << "wall " << n << ": " << testing::PrintToString(wall));
    tables->fill(kStale);
    FillPositionTables(plan, *tables);
    SecondForm(wall).Check(plan, *tables);
    if (HasFailure()) return;
    made += plan.usedPorts > 1 && plan.usedPorts <= kTablePorts;
    crowded += plan.outOfTables;
  }
  EXPECT_GT(made, kWalls / 2);
  EXPECT_GT(crowded, kWalls / 20);
}

}  // namespace
}  // namespace ZEPH_MCUC
