// Files of the board folder: whole texts, sized files, files mapped into memory.
//
// A fault that leaves the board unusable ends the process (`Fail`): a board in half a state would
// lie to whoever tests on it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace board {

// Says "board: MESSAGE" on standard error and ends the process with status 1.
[[noreturn]] void Fail(const std::string& message);

// An open file that is closed with the object; -1 is none.
class FileHandle {
 public:
  FileHandle() = default;
  explicit FileHandle(int descriptor) : descriptor_(descriptor) {}
  FileHandle(FileHandle&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  FileHandle& operator=(FileHandle&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  ~FileHandle();

  explicit operator bool() const { return descriptor_ >= 0; }
  int get() const { return descriptor_; }
  int Release() { return std::exchange(descriptor_, -1); }

 private:
  int descriptor_ = -1;
};

// Waits for the lock on a folder, which other processes and threads respect; held with the handle.
// It outlives every file in the folder, so files can be replaced under it.
// Ends the program where the folder can't be locked.
FileHandle LockFolder(const std::filesystem::path& folder);

// The same; an empty handle where the folder can't be locked, for instance because it is gone.
FileHandle TryLockFolder(const std::filesystem::path& folder);

// The file's bytes; nothing where it can't be read.
std::optional<std::string> ReadWhole(const std::filesystem::path& path);

// Writes the whole text at the file's position; false where it could not.
bool WriteAll(int file, std::string_view text);

// Puts `text` in the file's place in one step; a reader sees the old text or the new one. False
// where it could not, and the old text then stands.
bool ReplaceWhole(const std::filesystem::path& path, std::string_view text);

// Creates the file with `text` where there is none.
void CreateText(const std::filesystem::path& path, std::string_view text);

// Makes a plain file of at least `size` bytes; what is missing is zero and takes no room on disk
// but in small files. True when there was no such file before.
bool CreateSized(const std::filesystem::path& path, std::size_t size);

// Maps the first `size` bytes of a file that `CreateSized` has made, for reading and writing,
// shared with other processes, for as long as this process lives.
std::byte* MapShared(const std::filesystem::path& path, std::size_t size);

// A stretch of bytes of a file, from `begin` up to `end`.
struct FilePart {
  std::size_t begin;
  std::size_t end;
};

// The parts of a file that take room on disk, in ascending order; all else in it is 0.
std::vector<FilePart> FilledParts(const std::filesystem::path& path);

}  // namespace board
