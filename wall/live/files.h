// Reading the files of a board folder as they are: another process writes them at the same time,
// and any of them may be missing, short, or no plain file at all. Nothing is mapped, so a file that
// is cut short does no harm, and nothing is locked or changed.
//
// One thread at a time.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>

#include "board/files.h"

namespace quivord::live {

// A plain file, open for reading.
class FileReader {
 public:
  explicit FileReader(const std::filesystem::path& path);

  bool there() const { return static_cast<bool>(file_); }
  std::uint64_t size() const;
  // Tells a file that was replaced from the one before it.
  std::uint64_t identity() const;
  // When it was written last, microseconds since 1970; 0 where that can't be told.
  std::int64_t written_us() const;
  int descriptor() const { return file_.get(); }

  // Fills `into` with the bytes from `at` up. False where they aren't all there; `into` is then
  // unspecified.
  bool Read(std::uint64_t at, std::span<std::uint8_t> into) const;

 private:
  board::FileHandle file_;
};

// The whole text of a small file; nothing where there is none or it has more than `most` bytes.
std::optional<std::string> ReadText(const std::filesystem::path& path, std::size_t most);

}  // namespace quivord::live
