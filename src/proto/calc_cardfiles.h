// Configuration files for receiving cards: the header of the image that a client sends, and the
// packs inside a file. Pure; everything is measured before it is read.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

namespace ZEPH_MCUC {

namespace cardfiles {
inline constexpr uint32_t kBase = 0x0F000000;   // register of the image's first byte
inline constexpr uint32_t kNames = 0x0F000800;  // the name list, up to and with `kNamesLast`
inline constexpr uint32_t kNamesLast = 0x0F001000;
inline constexpr uint32_t kRename = 0x0F800000;   // device names; also the end of the files
inline constexpr uint32_t kControl = 0x0FF00000;  // not stored
inline constexpr uint32_t kSend = 0x0FF00100;     // + n sends file n
inline constexpr uint32_t kControlLast = 0x0FF0011F;
inline constexpr uint32_t kRenameBit = 0x00800000;

inline constexpr uint32_t kImage = 0x100000;  // bytes of header, names and files together
inline constexpr std::size_t kMostFiles = 16;
inline constexpr uint32_t kHeaderEntry = 36;  // offset of file 0 in the header
inline constexpr uint32_t kHeaderEntrySize = 32;
inline constexpr uint32_t kFirstPack = 32;  // in a file, behind its count of packs
inline constexpr uint32_t kPackHead = 8;
inline constexpr uint32_t kMostPackData = 4096;
}  // namespace cardfiles

// Where a register of the space, no control, lies in flash.
constexpr uint32_t CardFileFlash(uint32_t reg) {
  return (reg & cardfiles::kRenameBit) != 0 ? reg - 0x0EAEC000 : reg - 0x0E200000;
}

// Where the files of an image lie, sorted by address. `index[i]` is the number of the file that
// begins at register `address[i]`; `address[count]` closes the list.
struct CardFileTable {
  uint8_t enable = 0;
  uint8_t count = 0;
  std::array<uint8_t, cardfiles::kMostFiles + 1> index{};
  std::array<uint32_t, cardfiles::kMostFiles + 1> address{};

  // The entry whose file holds register `reg`; nothing where no file does. A file that is said to
  // begin in front of the space holds none: its bytes would lie far behind its start.
  std::optional<std::size_t> EntryOf(uint32_t reg) const;
};

// The table of a header; nothing where it says more than 16 files or is too short for what it says.
std::optional<CardFileTable> ReadCardFileHeader(std::span<const uint8_t> header);

// One pack: bytes for a card register, and how long to wait behind it.
struct CardPack {
  uint32_t reg = 0;
  uint16_t delay_ms = 0;
  std::span<const uint8_t> data;
};

// Packs of a file, one after the other: `Next` gives nothing at the end, at a pack of more than
// 4096 bytes, and at one that the file is too short for.
class CardPackReader {
 public:
  explicit CardPackReader(std::span<const uint8_t> file);
  std::optional<CardPack> Next();

 private:
  std::span<const uint8_t> file_;
  uint32_t left_ = 0;
  std::size_t at_ = cardfiles::kFirstPack;
};

// Head of a pack, from 8 bytes.
struct CardPackHead {
  uint32_t reg;
  uint16_t delay_ms;
  uint16_t length;
};
CardPackHead ReadCardPackHead(std::span<const uint8_t, cardfiles::kPackHead> head);

}  // namespace ZEPH_MCUC
