#include "proto/calc_rgbgamma.h"

#include <algorithm>

namespace ZEPH_MCUC::rgbgamma {

const Table* FindTable(uint32_t reg) {
  reg &= kAddressMask;
  const auto table = std::find_if(kTables.begin(), kTables.end(), [reg](const Table& row) {
    return reg >= row.reg && reg < row.end() - 1;
  });
  return table == kTables.end() ? nullptr : &*table;
}

const Value* FindValue(uint32_t reg, std::size_t length) {
  if (length != 1) return nullptr;
  reg &= kAddressMask;
  const auto value = std::find_if(kValues.begin(), kValues.end(),
                                  [reg](const Value& row) { return row.reg == reg; });
  return value == kValues.end() ? nullptr : &*value;
}

Piece PieceOf(const Table& table, uint32_t reg, std::size_t length) {
  reg &= kAddressMask;
  Piece piece;
  piece.fits = length <= table.end() - reg;
  piece.flash = table.flash + (reg - table.reg);
  piece.endsTable = length == table.end() - reg;
  piece.endsSet = piece.endsTable && table.colour == Colour::kBlue;
  piece.deep_color_mode = table.set == Set::k12Bit ? kDeepColour12 : kDeepColour10;
  return piece;
}

}  // namespace ZEPH_MCUC::rgbgamma
