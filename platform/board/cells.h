// The register cells of the two FPGAs, each a sparse file of 32 MiB that other processes may map
// too.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>

#include "board/settings.h"

namespace board {

inline constexpr std::uint32_t kCellCount = 32U << 20;

// Creates missing files of cells. New ones of FPGA 1 have the link bits of every port that has a
// device behind it; all else is 0.
void CreateCells(const std::filesystem::path& folder, const Settings& settings);

// Sets the link bits of all ports in `cells` of FPGA 1, in both places, as the devices are wired.
void SetLinkBits(std::byte* cells, const Settings& settings);

}  // namespace board
