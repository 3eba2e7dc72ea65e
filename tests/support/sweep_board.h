// What an operation leaves on the board beside the live store: cells of the FPGA and files of the
// board folder.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "support/sweep_store.h"

namespace sweep {

// The cells that operations fill, by their bus address; the feature page as far as `pageEnd`.
using Cells = std::map<std::uint32_t, Bytes>;
Cells ReadCells(std::uint32_t pageEnd);

// The files, by their path in the board folder: both environments, the temporary store, the card
// files, the EDIDs that the input boards show, and what a reset removes.
using Files = std::map<std::string, std::string>;
Files ReadFiles();
void PutFiles(const Files& files);
// As a new board has them.
void MakeNewFiles();

// What differs from what is wanted, or empty. Cells that touch `free` don't.
std::string Difference(const Cells& cells, const Cells& wanted, const std::vector<Region>& free);
std::string Difference(const Files& files, const Files& wanted);

}  // namespace sweep
