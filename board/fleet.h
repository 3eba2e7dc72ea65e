// Many boards with a daemon each, side by side.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace board_tool {

struct Fleet {
  int count = 0;                      // 1 to kMostBoards
  std::filesystem::path folder;       // the boards lie in it, named 01, 02 and so on
  std::vector<std::string> settings;  // key=value of board.conf, for boards that it makes
  std::vector<std::string> daemon_options;
};

inline constexpr int kMostBoards = 99;

// Makes the boards that are missing and runs `quivord-board run` on each; says when all take
// connections. Passes SIGINT and SIGTERM on and then returns kDone; a board that ends by itself is
// said and the others go on, and when none is left, or one can't be made, it returns kFailed.
int RunFleet(const Fleet& fleet);

}  // namespace board_tool
