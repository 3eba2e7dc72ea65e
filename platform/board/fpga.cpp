// The FPGAs' bus as the daemon reaches it: bounds, faults, trace, and then the cells.
#include <platform/fpga.h>

#include <cstdio>
#include <cstring>

#include "board/board.h"
#include "board/cells.h"
#include "board/packets.h"

namespace board {
namespace {

// The fields of an FPGA request of the communication interface, by their offsets in 32-bit words.
struct SpiRecord {
  static constexpr std::uint32_t kSize = 2084;
  static constexpr std::size_t kLength = 0, kType = 1, kCommand = 2, kIndex = 3;
  static constexpr std::size_t kValue = 6;
  static constexpr std::size_t kSubtype = 518, kOffset = 519, kCount = 520;
  static constexpr std::uint32_t kTypeSpi = 0, kReadTx = 4, kSubtypeRegister = 0;
  static constexpr std::uint32_t kMostBytes = 1024;
};

std::uint32_t WordAt(const void* record, std::size_t index) {
  std::uint32_t word = 0;
  std::memcpy(&word, static_cast<const char*>(record) + index * sizeof word, sizeof word);
  return word;
}

struct Access {
  char direction;
  int index;
  std::uint32_t address;
  std::uint32_t length;

  bool Possible(const void* data) const {
    return index < kFpgas && (data != nullptr || length == 0);
  }
};

void TraceAccess(const Access& access, bool done, const void* data) {
  char words[64];
  std::snprintf(words, sizeof words, "%c %d 0x%08x %u %s ", access.direction, access.index,
                access.address, access.length, done ? "ok" : "fail");
  Trace(TraceKind::kFpga, words + Hex(data, done ? access.length : 0));
}

// Runs `move` unless the access cannot be or is to fail; a write fails on a full disk, too.
template <typename Move>
std::int32_t Perform(const Access& access, Fault fault, const void* data, Move move) {
  const auto order = TraceOrder(TraceKind::kFpga);
  bool done = access.Possible(data) && !TakeFault(fault);
  const bool room = done && ReserveCells(access.index, access.address, access.length);
  done = room || (done && access.direction == 'R');
  if (done) move();
  if (order) TraceAccess(access, done, data);
  return done ? 0 : -1;
}

std::int32_t Read(int index, std::uint32_t address, std::uint32_t length, void* data) {
  return Perform({'R', index, address, length}, Fault::kFpgaRead, data,
                 [&] { LoadCells(index, address, length, data); });
}

}  // namespace
}  // namespace board

int32_t WriteFPGABlock(uint8_t index, uint32_t address, uint32_t length, const uint8_t* data) {
  length &= 0xFFFF;
  const auto result = board::Perform({'W', index, address, length}, board::Fault::kFpgaWrite, data,
                                     [&] { board::StoreBusCells(index, address, length, data); });
  const std::uint32_t cell = address % board::kCellCount;
  if (result == 0 && index == 1 && board::MaySend(cell, length)) {
    board::FollowWrite(cell, {data, length});
  }
  return result;
}

int32_t ReadFPGABlock(uint8_t index, uint32_t address, uint32_t length, uint8_t* data) {
  return board::Read(index, address, length & 0xFFFF, data);
}

int32_t Shal_comif_ioctl(uint32_t size, uint32_t count, void* record) {
  using board::WordAt;
  using Spi = board::SpiRecord;
  if (record == nullptr || count != 1 || size != Spi::kSize) return -1;
  const auto index = WordAt(record, Spi::kIndex);
  const auto length = WordAt(record, Spi::kCount);
  if (WordAt(record, Spi::kLength) != Spi::kSize || WordAt(record, Spi::kType) != Spi::kTypeSpi ||
      WordAt(record, Spi::kCommand) != Spi::kReadTx ||
      WordAt(record, Spi::kSubtype) != Spi::kSubtypeRegister || index >= board::kFpgas ||
      length > Spi::kMostBytes) {
    std::fputs("board: a request of the communication interface is none that the board knows\n",
               stderr);
    return -1;
  }
  return board::Read(static_cast<int>(index), WordAt(record, Spi::kOffset), length,
                     static_cast<char*>(record) + Spi::kValue * sizeof(std::uint32_t));
}

int32_t FPGA_UDP_Init() { return 0; }
