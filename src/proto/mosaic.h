// The mosaic: how a wall of cabinets is cut into cables.
//
// The wall is cut into stripes of whole lines, rows or columns of cabinets, one stripe a port. A
// cable may carry a stated number of cabinets; the stripe is that number rounded up to whole lines,
// and the last stripe takes what is left. Ten ports share the stripes in a cycle, so that those the
// wall doesn't need repeat the others. Five rows of three, cabled from the bottom left by rows, six
// cabinets a cable:
//
//     port 2   > 1  2  3       the last stripe lies at the origin, since from here
//     port 1     6  5  4       the next line, and the next port, lie above
//              > 1  2  3
//     port 0     6  5  4       ports 3, 6 and 9 show the same as port 0, 4 and 7 as port 1,
//              > 1  2  3       5 and 8 as port 2
//
// Values are 16 bits wide and wrap; sums inside a division and the limits don't. Pure: no state,
// any thread. Who commits a plan to image, FPGA and flash is another's business.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "proto/calc_porttables.h"
#include "proto/mosaic_walk.h"

namespace ZEPH_MCUC {

// What a client says of its wall, and the size of the cards it is made of.
struct MosaicInput {
  uint16_t rows = 0;  // of cabinets
  uint16_t columns = 0;
  uint16_t boxNumber = 0;   // cabinets that one cable may carry
  uint8_t mode = 0;         // index into `kConnectionModes`
  uint16_t cardWidth = 0;   // pixels
  uint16_t cardHeight = 0;  // pixels
};

// A port's part of the screen, in pixels.
struct PortWindow {
  uint16_t width = 0;
  uint16_t height = 0;
  uint16_t x = 0;
  uint16_t y = 0;

  bool operator==(const PortWindow&) const = default;
};

// All that follows from the input. Where `valid` is false nothing else is set.
struct MosaicPlan {
  bool valid = false;
  uint16_t realWidth = 0;   // of the screen, for `feature::kRealWidth`: rounded up to even
  uint16_t realHeight = 0;  // for `feature::kRealHeight`
  uint16_t setWidth = 0;    // for `feature::kSetWidth`: not rounded
  uint8_t usedPorts = 0;    // stripes, 1 to 16
  Cable cable;              // of every port but the last one used
  Cable lastCable;          // of the last port used
  std::array<PortWindow, kTablePorts> windows = {};  // the last one is not cut to its stripe
  std::array<uint16_t, kTablePorts> cards = {};      // cabinets on each port

  // More ports are used than have a table. The calculation ends in the middle of the tables: the
  // windows, the counts and the tables of ports 0 to 9 are made, none is repeated, and neither the
  // tables nor the image go out.
  bool outOfTables = false;
};

// Whether a plan can be made: nothing is 0, and the wall has at least as many cabinets as one cable
// may carry and at most 16 times as many. More than 65535 cabinets, which a stored record can't
// ask for, are refused too, since the counts behind would not hold them.
bool IsValid(const MosaicInput& input);

MosaicPlan PlanMosaic(const MosaicInput& input);

// The stripe that `port`, 0 to 9, shows; 0 where the ten ports don't hold all stripes.
std::size_t StripeOfPort(const MosaicPlan& plan, std::size_t port);

// Brings `tables`, the present ones of all ten ports, up to the plan. A port with a stripe of its
// own takes its list of cards as often as it fits whole, and what lies behind stays; a port that
// repeats another takes its whole table, whatever it holds. An invalid plan changes nothing.
void FillPositionTables(const MosaicPlan& plan, std::span<uint8_t, kPositionSize> tables);

// The head of the screen parameters as a calculation leaves it. A layout that isn't one of rows,
// columns, mode and box number leaves those 0.
inline constexpr std::size_t kScreenParaHead = 15;
std::array<uint8_t, kScreenParaHead> ScreenParaHead(const MosaicInput& input);

}  // namespace ZEPH_MCUC
