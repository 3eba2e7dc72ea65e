// Where a fuzz target's board lies.
#pragma once

#include <filesystem>

namespace home {

// Makes a folder, in memory where there is such a place, for the board of this program, points the
// platform to it and has it removed at the program's end. Ends the program where none can be made.
std::filesystem::path Make();

}  // namespace home
