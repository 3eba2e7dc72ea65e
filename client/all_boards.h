// One command on many boards at the same time.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace ctl {

// The boards of a fleet: the folders in `folder` that hold a board.conf, by name.
std::vector<std::filesystem::path> BoardsIn(const std::filesystem::path& folder);

// Runs `command` for each board in a process of its own and prints what they print, board by board,
// each line behind its board's name (an object of JSON gets the name as its member `board`). What a
// command that goes on has said shows as soon as none says more. Returns the largest exit status,
// or kNoAnswer's for a process that was killed. The caller has no threads yet.
int RunOnAll(const std::vector<std::filesystem::path>& boards, bool json,
             const std::function<int(const std::filesystem::path& board)>& command);

}  // namespace ctl
