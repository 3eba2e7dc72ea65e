// The register cells of the two FPGAs, each a sparse file of 32 MiB that other processes may map
// too.
//
// Any thread may call any function. Cells are read and written while others do the same: each byte
// is then old or new.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>

#include "board/settings.h"

namespace board {

inline constexpr std::uint32_t kCellCount = 32U << 20;
inline constexpr int kFpgas = 2;

// Creates missing files of cells. New ones of FPGA 1 have the link bits of every port that has a
// device behind it; all else is 0.
void CreateCells(const std::filesystem::path& folder, const Settings& settings);

// Moves `length` bytes between `data` and the cells of FPGA `index` (0 or 1) from `address` up;
// addresses count modulo kCellCount. Reads and writes all cells alike, as the hardware does.
void LoadCells(int index, std::uint32_t address, std::uint32_t length, void* data);
void StoreCells(int index, std::uint32_t address, std::uint32_t length, const void* data);

// Makes sure that the cells have room on the disk: to store a cell that has none ends the process,
// to load one takes a road past the mapping. False where the disk is full.
bool ReserveCells(int index, std::uint32_t address, std::uint32_t length);

// As StoreCells, but leaves the status cells alone: a write that comes over the bus.
void StoreBusCells(int index, std::uint32_t address, std::uint32_t length, const void* data);

// All cells 0 but for the status cells, as after a power-up.
void ClearCells(int index);

// Sets the copper links of all ports as they are in a new memory.
void SetLinks(const Settings& settings);

// Sets or clears a link of output port `port` (0 to 15) in all its places of FPGA 1: the copper
// link, and the link below fiber 1 or 2.
void SetLink(int port, bool up);
void SetFiberLink(int fiber, int port, bool up);

}  // namespace board
