// The input boards: what is wired, and the EDIDs that they show in files of the board folder.
#pragma once

#include <filesystem>

#include "board/settings.h"

namespace board {

// Gives each input board that has no EDID yet one of its own.
void CreateInputs(const std::filesystem::path& folder, const Settings& settings);

}  // namespace board
