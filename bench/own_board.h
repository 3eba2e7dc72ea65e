// A board folder of the benchmark's own, removed when it goes.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace bench {

class Board {
 public:
  Board() : path_(std::filesystem::temp_directory_path() / "quivord-bench-XXXXXX") {
    if (mkdtemp(path_.data()) == nullptr) std::abort();
  }
  ~Board() {
    std::error_code ignored;  // a folder that stays is no failure of the measurement
    std::filesystem::remove_all(path_, ignored);
  }
  Board(const Board&) = delete;
  Board& operator=(const Board&) = delete;

  // Makes it the board that the platform sets up at its first call.
  void Choose() const { setenv("QUIVORD_BOARD", path_.c_str(), 1); }

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

// The one that all benchmarks of the daemon run on.
inline const Board& OwnBoard() {
  static const Board board;
  board.Choose();
  return board;
}

}  // namespace bench
