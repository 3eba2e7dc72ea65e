// Packets on their way to the cards through the FPGA's two buffers.
#pragma once

#include <cstdint>
#include <span>

namespace board {

// The cells of FPGA 1 that send packets: the control cell of the large buffer, and the port cell
// and the buffer of the small one.
inline constexpr std::uint32_t kSendCell = 0x100000;
inline constexpr std::uint32_t kPortCell = 0x100;
inline constexpr std::uint32_t kSmallBuffer = 0x400;

// Whether a bus write to FPGA 1 may set off more than a change of cells.
constexpr bool MaySend(std::uint32_t cell, std::uint32_t length) {
  return (cell <= kSendCell && kSendCell - cell < length) || cell == kSmallBuffer ||
         (cell == kPortCell && length == 1);
}

// What the FPGA does on such a write, after the cells have changed. `cell` is the address modulo
// the number of cells.
void FollowWrite(std::uint32_t cell, std::span<const std::uint8_t> data);

// The 16-bit sum of a packet's bytes.
std::uint16_t PacketSum(std::span<const std::uint8_t> bytes);

}  // namespace board
