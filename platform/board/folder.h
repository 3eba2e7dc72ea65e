// Which folder is the board, what is wired to it, and how the folder comes to hold everything.
#pragma once

#include <filesystem>

#include "board/settings.h"

namespace board {

// The folder that the environment names, or the default one; absolute, not yet looked at.
std::filesystem::path ChooseFolder();

// What `board.conf` of the board folder says, read when the folder was set up.
const Settings& Config();

}  // namespace board
