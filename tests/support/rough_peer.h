// Peers that do what a peer should not: send garbage, stall, die in the middle; and a board that
// gives trouble. Each works on a thread of its own until `more` says no, and harms nobody but
// itself.
#pragma once

#include <atomic>
#include <filesystem>
#include <functional>
#include <future>
#include <string>
#include <vector>

namespace rough {

using More = std::function<bool()>;

// Random packets: no envelope, a wrong size, no frame, a frame with a wrong sum.
void SendGarbage(const std::filesystem::path& board, unsigned seed, const More& more);

// Joins, asks for much, and leaves without reading an answer.
void ComeAndGo(const std::filesystem::path& board, unsigned seed, const More& more);

// Asks for more than its backlog holds and reads none of it for a while.
void Stall(const std::filesystem::path& board, unsigned seed, const More& more);

// Links flap, the light sensor fails and comes back, time jumps back and forth.
void Disturb(const std::filesystem::path& board, unsigned seed, const More& more);

// All of them at once.
class Crowd {
 public:
  Crowd(const std::filesystem::path& board, unsigned seed);
  ~Crowd() { End(); }
  Crowd(const Crowd&) = delete;
  Crowd& operator=(const Crowd&) = delete;

  // Ends them; why one of them couldn't go on, a line each: it found nobody on the bus.
  std::string End();

 private:
  std::atomic<bool> over_ = false;
  std::vector<std::future<void>> work_;
};

}  // namespace rough
