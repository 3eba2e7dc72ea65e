// The shape of the position tables and of the number table: sizes, places and bus addresses.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace ZEPH_MCUC {

inline constexpr std::size_t kTablePorts = 10;  // ports that the tables and calculations know
inline constexpr std::size_t kPositionBlock = 0x1000;  // bytes of one port: 1024 entries of X and Y
inline constexpr std::size_t kPositionEntry = 4;       // X, then Y, 16 bits each, in pixels
inline constexpr std::size_t kPositionEntries = kPositionBlock / kPositionEntry;
inline constexpr std::size_t kPositionSize = kTablePorts * kPositionBlock;  // 40960
inline constexpr std::size_t kNumberSize = 768;
inline constexpr uint32_t kPositionBus = 0x600000;  // FPGA bus address of the position tables
inline constexpr uint32_t kBusBlock = 0x400;        // bytes in which they go to the FPGA

// The five blocks of the number table and where they lie on the FPGA bus. The first two bytes of a
// port's 32-byte record are its card count.
struct NumberBlock {
  uint32_t offset;
  uint32_t length;
  uint32_t bus;
};
inline constexpr std::array<NumberBlock, 5> kNumberBlocks = {{{0x000, 0x80, 0x500000},
                                                              {0x080, 0x80, 0x501000},
                                                              {0x100, 0x100, 0x500100},
                                                              {0x200, 0x80, 0x502000},
                                                              {0x280, 0x80, 0x503000}}};
inline constexpr uint32_t kNumberRecord = 0x20;

// Where the record of port 0 to 9 lies in the number table: ports 8 and 9 stand in a block apart.
constexpr uint32_t NumberRecordOffset(std::size_t port) {
  return static_cast<uint32_t>(port < 8 ? port * kNumberRecord
                                        : 0x200 + (port - 8) * kNumberRecord);
}

}  // namespace ZEPH_MCUC
