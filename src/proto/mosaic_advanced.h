// The advanced layout: each port carries a block of cabinets of its own, cabled in a mode of its
// own, anywhere on the screen. There is no split; the walk along a cable is the mosaic's.
//
// Pure: no state, any thread.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "proto/calc_shortcut.h"
#include "proto/mosaic.h"

namespace ZEPH_MCUC {

inline constexpr uint32_t kMostCabinetsOfPort = 512;
inline constexpr uint32_t kMostCabinetsOfPorts = 2048;  // on all ten together

struct AdvancedPort {
  uint8_t mode = 0;  // index into `kConnectionModes`; another number gives a table of zeros
  uint8_t rows = 1;  // of cabinets
  uint8_t columns = 1;
  uint16_t x = 0;  // of the window's upper left corner, in pixels
  uint16_t y = 0;

  constexpr uint32_t cabinets() const { return uint32_t{rows} * columns; }
};
using AdvancedPorts = std::array<AdvancedPort, kTablePorts>;

struct CardSize {
  uint16_t width = 0;  // pixels
  uint16_t height = 0;
};

// A port's record to its fields. A count of 0 becomes 1: an empty record is one cabinet at the
// origin.
using PortRecordBytes = std::span<const uint8_t, shortcut::kPortRecordSize>;
AdvancedPort ReadAdvancedPort(PortRecordBytes record);

// Whether no port, and not all together, carry too many cabinets.
bool WithinLimits(const AdvancedPorts& ports);
uint32_t Cabinets(const AdvancedPorts& ports);      // of all ports
uint32_t MostCabinets(const AdvancedPorts& ports);  // of the port that carries most

// What encloses all windows, from the screen's origin, in pixels. Not cut to 16 bits.
struct Extent {
  uint32_t width = 0;
  uint32_t height = 0;
};
Extent ScreenOfPorts(const AdvancedPorts& ports, CardSize card);

// Windows, counts and the registers of the screen's size, which hold the largest window here and
// not the whole screen. Values are 16 bits wide and wrap.
struct AdvancedPlan {
  uint16_t realWidth = 0;   // for `feature::kRealWidth`: rounded up to even
  uint16_t realHeight = 0;  // for `feature::kRealHeight`
  uint16_t setWidth = 0;    // for `feature::kSetWidth`: not rounded
  std::array<PortWindow, kTablePorts> windows = {};
  std::array<uint16_t, kTablePorts> cards = {};
};

// Whether the limits hold is the caller's to ask first.
AdvancedPlan PlanAdvanced(const AdvancedPorts& ports, CardSize card);

// The cable of a port, for `FillPositionTable`.
Cable CableOfPort(const AdvancedPort& port, CardSize card);

}  // namespace ZEPH_MCUC
