// The board program of the build that this library comes from.
#pragma once

namespace board {

// Where that build puts its program quivord-board. Empty in the programs of a build, which have it
// beside them: so they are the same bytes whatever the build's folder is called. Any thread.
const char* BuiltTool();

}  // namespace board
