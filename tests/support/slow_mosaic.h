// The mosaic a second time, in a slow and obvious form: a cable is walked like a person would walk
// it, cabinet by cabinet, and stripes are cut off the wall one after the other.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "proto/mosaic.h"

namespace slow_mosaic {

struct Spot {
  int x;  // cabinets from the left
  int y;  // cabinets from the top
  bool operator==(const Spot&) const = default;
};

// Odd modes begin with a column. The corner goes top left, top right, bottom left, bottom right.
inline bool ByColumns(int mode) { return mode % 2 == 1; }
inline bool FromRight(int mode) { return mode / 2 % 2 == 1; }
inline bool FromBottom(int mode) { return mode / 2 >= 2; }

// All cabinets of a block of `width` by `height`, in the order of the cable.
inline std::vector<Spot> Walk(int mode, int width, int height) {
  Spot at{FromRight(mode) ? width - 1 : 0, FromBottom(mode) ? height - 1 : 0};
  Spot step{FromRight(mode) ? -1 : 1, FromBottom(mode) ? -1 : 1};
  std::vector<Spot> cable;
  while (true) {
    cable.push_back(at);
    if (cable.size() == static_cast<std::size_t>(width) * height) return cable;
    int& along = ByColumns(mode) ? at.y : at.x;
    int& across = ByColumns(mode) ? at.x : at.y;
    int& forward = ByColumns(mode) ? step.y : step.x;
    const int length = ByColumns(mode) ? height : width;
    if (along + forward < 0 || along + forward >= length) {
      forward = -forward;
      across += ByColumns(mode) ? step.x : step.y;
    } else {
      along += forward;
    }
  }
}

// Lines of each stripe, in the order of the ports.
inline std::vector<int> Stripes(int lines, int length, int boxNumber) {
  int full = 0;
  while (full * length < boxNumber) ++full;
  std::vector<int> stripes;
  for (int left = lines; left > 0; left -= full) stripes.push_back(std::min(left, full));
  return stripes;
}

}  // namespace slow_mosaic
