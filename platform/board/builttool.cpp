// For programs that link the library elsewhere.
#include "board/builttool.h"

namespace board {

const char* BuiltTool() { return QUIVORD_BOARD_TOOL; }

}  // namespace board
