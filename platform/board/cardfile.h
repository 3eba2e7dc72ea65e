// The file `cards`: a header, then one record a card, ordered by device type, port and board.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "board/settings.h"

namespace board {

inline constexpr std::size_t kCardHeaderSize = 16;
inline constexpr std::size_t kCardRecordSize = 32;

// Offsets in a record; values of more than one byte are little-endian.
namespace card_record {
inline constexpr std::size_t kType = 0;
inline constexpr std::size_t kPort = 1;
inline constexpr std::size_t kBoard = 2;
inline constexpr std::size_t kSize = 4;  // width and height, of receiving cards only
inline constexpr std::size_t kBrightness = 8;
inline constexpr std::size_t kColours = 9;
inline constexpr std::size_t kScreenControl = 13;
inline constexpr std::size_t kMapping = 14;
inline constexpr std::size_t kTakesPart = 15;
inline constexpr std::size_t kPackets = 16;
}  // namespace card_record

// Registers of a card that are bytes of its record.
struct CardField {
  std::uint32_t first;
  std::size_t length;
  std::size_t offset;
  bool receiving_only;
};
inline constexpr std::array<CardField, 5> kCardFields = {{
    {0x02000017, 4, card_record::kSize, true},
    {0x02000001, 1, card_record::kBrightness, false},
    {0x02000002, 4, card_record::kColours, false},
    {0x02000100, 1, card_record::kScreenControl, false},
    {0x01000088, 1, card_record::kMapping, false},
}};

// The content of a new file for the cards that are wired.
std::string NewCardFile(const Settings& settings);

// Whether `file` lists the same cards as `fresh`, whatever else their records hold.
bool ListsSameCards(std::string_view file, std::string_view fresh);

}  // namespace board
