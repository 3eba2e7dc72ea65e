// The position tables and the number table: where every card of every port lies, and how many hang
// on each. The layout calculations fill them, two register spaces serve them, a save stores them.
// Several threads read and write them without a lock, byte by byte; what goes to the FPGA or comes
// from it goes through the functions below, so that a refresh never undoes a write on its way.
#pragma once

#include <cstdint>
#include <span>

#include "mcucutil.h"
#include "proto/calc_porttables.h"

namespace ZEPH_MCUC {

inline constinit SharedBytes<kPositionSize> PortsTopoPara;
inline constinit SharedBytes<kNumberSize> NumberPartPara;

// Any thread. Ranges lie inside the tables. Results are the FPGA bus's: negative on failure.

// Puts `bytes` into the position tables at `offset` and onto the bus.
int32_t WritePositions(uint32_t offset, std::span<const uint8_t> bytes);
// Puts the first bytes of the position tables onto the bus once more, by way of `buffer`, as many
// as it has.
int32_t RepeatPositions(std::span<uint8_t> buffer);
// Takes `length` bytes of the position tables from the bus; the tables stay as they were where it
// fails.
int32_t RefreshPositions(uint32_t offset, uint32_t length);

// Takes the first `length` bytes of one block of the number table from the bus.
int32_t RefreshNumbers(const NumberBlock& block, uint32_t length);
// Puts `bytes` into the number table at `offset`, then the first `length` bytes of one block of it
// onto the bus.
int32_t WriteNumbers(uint32_t offset, std::span<const uint8_t> bytes, const NumberBlock& block,
                     uint32_t length);
// Puts each port's card count into its record and, byte by byte, onto the bus.
void WriteCardCounts(std::span<const uint16_t, kTablePorts> counts);

}  // namespace ZEPH_MCUC
