// The end of a text file that others append to: whole lines that have come since the last look.
//
// However fast the file grows, a look reads a bounded piece of its end; what is passed over is
// counted. A file that was cut short or replaced is begun anew. One thread at a time.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace quivord::live {

class Tail {
 public:
  static constexpr std::size_t kMostRead = 256 << 10;  // bytes a look
  static constexpr std::size_t kMostLine = 1024;       // of a longer line, its first bytes

  explicit Tail(std::filesystem::path file) : file_(std::move(file)) {}

  // The lines that have been ended since the last look, each cut to `kMostLine` bytes. None where
  // there is no such file.
  std::vector<std::string> Look();

  // Nobody looks for a while: what comes until the next look isn't missed.
  void Rest() { looked_ = false; }

  std::uint64_t passedOver() const { return passed_over_; }  // bytes

 private:
  void BeginAnew(std::uint64_t identity);
  void SkipTo(std::uint64_t at);
  void Take(std::string_view piece, std::vector<std::string>& lines);

  std::filesystem::path file_;
  bool looked_ = false;
  std::uint64_t identity_ = 0;
  std::uint64_t at_ = 0;        // the first byte that was not read yet
  bool in_the_middle_ = false;  // of a line whose beginning was passed over
  std::string line_;            // the beginning of a line that has not been ended
  std::uint64_t passed_over_ = 0;
};

}  // namespace quivord::live
