// The board's trace, line by line, while the board appends to it: every line once and whole,
// however long it is or however far behind the reader. A trace that was cut short or replaced is
// begun anew. One thread at a time.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace quivord::trace {

class Follower {
 public:
  using TakeLine = std::function<void(std::string_view line)>;

  // Begins at the end of what is there now, or with `from_start` at its beginning. A file that
  // isn't there yet is waited for, and read from its beginning.
  Follower(std::filesystem::path file, bool from_start);

  // Gives `take` the lines that have ended since the last call, without their line feeds. The view
  // holds until `take` returns.
  void Look(const TakeLine& take);

 private:
  std::filesystem::path file_;
  std::uint64_t identity_ = 0;
  std::uint64_t at_ = 0;  // the first byte that was not read yet
  std::string begun_;     // the beginning of a line that has not been ended
};

}  // namespace quivord::trace
