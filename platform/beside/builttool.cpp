// For the build's own programs: takes the place of the library's answer when they are linked.
#include "board/builttool.h"

namespace board {

const char* BuiltTool() { return ""; }

}  // namespace board
