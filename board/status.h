// How the board program ends.
#pragma once

namespace board_tool {

enum Status : int {
  kDone = 0,
  kFailed = 1,
  kWrongUse = 2,
  kUnknownName = 3,  // no such fault, no such key of board.conf
};

}  // namespace board_tool
