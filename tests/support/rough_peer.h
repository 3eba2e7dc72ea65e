// Peers that do what a peer should not: send garbage, stall, die in the middle. Each works on a
// thread of its own until `more` says no, and harms nobody but itself.
#pragma once

#include <filesystem>
#include <functional>

namespace rough {

using More = std::function<bool()>;

// Random packets: no envelope, a wrong size, no frame, a frame with a wrong sum.
void SendGarbage(const std::filesystem::path& board, unsigned seed, const More& more);

// Joins, asks for much, and leaves without reading an answer.
void ComeAndGo(const std::filesystem::path& board, unsigned seed, const More& more);

// Asks for more than its backlog holds and reads none of it for a while.
void Stall(const std::filesystem::path& board, unsigned seed, const More& more);

}  // namespace rough
