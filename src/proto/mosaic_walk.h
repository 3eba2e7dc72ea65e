// The eight ways to cable a wall, and the walk along one cable.
//
// A cable carries whole lines of cabinets, rows or columns. It enters at one corner, runs along the
// first line, turns, and comes back along the next. Cabling from the bottom right by rows, four
// cabinets a line and three lines:
//
//     12  11  10   9
//      5   6   7   8
//      4   3   2   1  <- the cable comes in here
//
// Pure: no state, any thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "proto/calc_porttables.h"

namespace ZEPH_MCUC {

enum class Direction : uint8_t { kRight, kDown, kLeft, kUp };

constexpr bool IsVertical(Direction d) { return d == Direction::kDown || d == Direction::kUp; }

// Whether one walks towards the left or the upper edge, where coordinates begin.
constexpr bool IsBackward(Direction d) { return d == Direction::kLeft || d == Direction::kUp; }

struct ConnectionMode {
  const char* name;  // the first cabinet's corner, and what a line is
  Direction runs;    // where the first line runs; each further line runs against the one before
  Direction next;    // on which side of a line the next one lies, and of a port the next port
};

// By number, as clients and the stored record give it.
inline constexpr std::array<ConnectionMode, 8> kConnectionModes = {{
    {"top-left-rows", Direction::kRight, Direction::kDown},
    {"top-left-columns", Direction::kDown, Direction::kRight},
    {"top-right-rows", Direction::kLeft, Direction::kDown},
    {"top-right-columns", Direction::kDown, Direction::kLeft},
    {"bottom-left-rows", Direction::kRight, Direction::kUp},
    {"bottom-left-columns", Direction::kUp, Direction::kRight},
    {"bottom-right-rows", Direction::kLeft, Direction::kUp},
    {"bottom-right-columns", Direction::kUp, Direction::kLeft},
}};

constexpr bool IsConnectionMode(uint8_t mode) { return mode < kConnectionModes.size(); }

// Whether the lines of a mode are columns. Numbers that name no mode have an answer too.
constexpr bool HasColumns(uint8_t mode) { return (mode & 1) != 0; }

// What hangs on one cable: `lines` lines of `length` cabinets each.
struct Cable {
  uint8_t mode = 0;
  uint16_t lines = 0;
  uint16_t length = 0;
  uint16_t cardWidth = 0;  // pixels of a cabinet
  uint16_t cardHeight = 0;

  constexpr uint32_t cards() const { return uint32_t{lines} * length; }
};

// A cabinet's place, in cabinets from the upper left corner of its cable's block.
struct Place {
  uint32_t column;
  uint32_t row;
};

// Where the walk stands at cabinet `step` of line `line`, both from 0.
constexpr Place PlaceOnCable(const ConnectionMode& mode, const Cable& cable, uint32_t line,
                             uint32_t step) {
  const bool turned = line % 2 == 1;
  const uint32_t along = IsBackward(mode.runs) != turned ? cable.length - 1 - step : step;
  const uint32_t across = IsBackward(mode.next) ? cable.lines - 1 - line : line;
  return IsVertical(mode.runs) ? Place{across, along} : Place{along, across};
}

// Bytes at the front of a port's table that a cable with `cards` cabinets fills: its list of cards
// as often as it fits whole, so that card numbers past the cable's end begin again. 0 where the
// list is empty or longer than the table. What lies behind is left as it was.
constexpr std::size_t FilledBytes(uint32_t cards) {
  return cards == 0 ? 0 : kPositionEntries / cards * cards * kPositionEntry;
}

using PositionBlock = std::span<uint8_t, kPositionBlock>;  // the table of one port

// Walks `cable` and writes the position of each card, in pixels from the upper left corner of the
// port's window, wrapping at 16 bits. A number that names no mode gives zeros. Writes the first
// `FilledBytes(cable.cards())` bytes of `table`, returns how many that are.
std::size_t FillPositionTable(const Cable& cable, PositionBlock table);

}  // namespace ZEPH_MCUC
