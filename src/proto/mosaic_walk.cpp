#include "proto/mosaic_walk.h"

#include <algorithm>
#include <cstring>

namespace ZEPH_MCUC {
namespace {

void StoreWord(uint8_t* at, uint32_t value) {
  at[0] = static_cast<uint8_t>(value);
  at[1] = static_cast<uint8_t>(value >> 8);
}

void ListCards(const ConnectionMode& mode, const Cable& cable, uint8_t* entry) {
  for (uint32_t line = 0; line < cable.lines; ++line) {
    for (uint32_t step = 0; step < cable.length; ++step, entry += kPositionEntry) {
      const Place place = PlaceOnCable(mode, cable, line, step);
      StoreWord(entry, place.column * cable.cardWidth);
      StoreWord(entry + 2, place.row * cable.cardHeight);
    }
  }
}

// Repeats the first `list` bytes up to `end`, a multiple of `list`: each copy doubles what is
// there.
void Repeat(uint8_t* bytes, std::size_t list, std::size_t end) {
  for (std::size_t done = list; done < end; done += std::min(done, end - done)) {
    std::memcpy(bytes + done, bytes, std::min(done, end - done));
  }
}

}  // namespace

std::size_t FillPositionTable(const Cable& cable, PositionBlock table) {
  const std::size_t filled = FilledBytes(cable.cards());
  if (filled == 0) return 0;
  if (!IsConnectionMode(cable.mode)) {
    std::fill_n(table.begin(), filled, uint8_t{0});
    return filled;
  }
  ListCards(kConnectionModes[cable.mode], cable, table.data());
  Repeat(table.data(), cable.cards() * kPositionEntry, filled);
  return filled;
}

}  // namespace ZEPH_MCUC
