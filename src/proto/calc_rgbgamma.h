// The gamma tables that clients upload: two sets, a table a colour, each with its registers, its
// place in the store and its place in the FPGA. Pure, any thread.
//
// The addresses are stored state and part of the protocol: they are not to be renumbered.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace ZEPH_MCUC::rgbgamma {

inline constexpr uint32_t kBase = 0x0E000000;
inline constexpr uint32_t kAddressMask = 0x0FFFFFFF;  // the bits of a register that are looked at

enum class Set : uint8_t { k12Bit, k10Bit };
enum class Colour : uint8_t { kRed, kGreen, kBlue };
inline constexpr std::size_t kColours = 3;

// A set by the mode byte that asks for it: 0x78 is 12 bits, any other 10.
inline constexpr uint8_t kDeepColour12 = 0x78;
inline constexpr uint8_t kDeepColour10 = 0x58;
constexpr Set SetOf(uint8_t deep_color_mode) {
  return deep_color_mode == kDeepColour12 ? Set::k12Bit : Set::k10Bit;
}

// One stored table of 8192 bytes.
struct Table {
  uint32_t reg;    // of its first byte
  uint32_t flash;  // where its bytes are stored
  uint32_t tag;    // where its tag is stored, once its last byte was
  Set set;
  Colour colour;
  const char* name;  // as the log calls it

  constexpr uint32_t end() const;  // the register behind its last byte
};

// A stored byte that nothing in the daemon uses: the exponent that a client has made a set with.
struct Value {
  uint32_t reg;
  uint32_t flash;
  Set set;
  const char* name;
};

inline constexpr uint32_t kTableSize = 0x2000;
constexpr uint32_t Table::end() const { return reg + kTableSize; }

inline constexpr std::array<Table, 6> kTables = {{
    {0x0E000000, 0xD0C000, 0xD09000, Set::k12Bit, Colour::kRed, "12BIT_RedGamma"},
    {0x0E100000, 0xD0E000, 0xD0A000, Set::k12Bit, Colour::kGreen, "12BIT_GreenGamma"},
    {0x0E200000, 0xD10000, 0xD0B000, Set::k12Bit, Colour::kBlue, "12BIT_BlueGamma"},
    {0x0E002000, 0xD03000, 0xD00000, Set::k10Bit, Colour::kRed, "10BIT_RedGamma"},
    {0x0E102000, 0xD05000, 0xD01000, Set::k10Bit, Colour::kGreen, "10BIT_GreenGamma"},
    {0x0E202000, 0xD07000, 0xD02000, Set::k10Bit, Colour::kBlue, "10BIT_BlueGamma"},
}};

inline constexpr std::array<Value, 2> kValues = {{
    {0x0E302000, 0xD13000, Set::k12Bit, "12BIT_GammaVal"},
    {0x0E300000, 0xD12000, Set::k10Bit, "10BIT_GammaVal"},
}};

// Where the FPGA holds the table of a colour, whichever set it came from.
constexpr uint32_t BusOf(Colour colour) {
  return 0x700000 + 0x10000 * static_cast<uint32_t>(colour);
}

// What a read that begins at register `reg` of a table takes from the bus.
constexpr uint32_t ReadBus(const Table& table, uint32_t reg) {
  return BusOf(table.colour) + (reg & 0xFFFF);
}

// The tables of a set: red, green, blue.
constexpr std::span<const Table, kColours> TablesOf(Set set) {
  return std::span<const Table, kColours>(kTables.data() + (set == Set::k12Bit ? 0 : kColours),
                                          kColours);
}

// The table in which an access that begins at register `reg` lies, or null. A table's last odd byte
// is nobody's: entries have two.
const Table* FindTable(uint32_t reg);

// The value at register `reg`, or null; it is reached by accesses of one byte alone.
const Value* FindValue(uint32_t reg, std::size_t length);

// What storing `length` bytes from register `reg` on comes to.
struct Piece {
  bool fits = false;            // it ends inside the table or with it
  uint32_t flash = 0;           // where it goes
  bool endsTable = false;       // the table's tag is due
  bool endsSet = false;         // it was the last table of the set, which is to be loaded
  uint8_t deep_color_mode = 0;  // by which to load it
};
Piece PieceOf(const Table& table, uint32_t reg, std::size_t length);

}  // namespace ZEPH_MCUC::rgbgamma
