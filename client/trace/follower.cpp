#include "trace/follower.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "board/files.h"

namespace quivord::trace {
namespace {

constexpr std::size_t kPiece = 1 << 20;  // bytes read at once

// The file, which one it is, and how long.
struct Opened {
  board::FileHandle file;
  std::uint64_t identity = 0;
  std::uint64_t size = 0;
};

Opened Open(const std::filesystem::path& path) {
  Opened opened{board::FileHandle(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))};
  struct stat facts {};
  if (!opened.file || fstat(opened.file.get(), &facts) != 0 || !S_ISREG(facts.st_mode)) return {};
  opened.identity = facts.st_ino;
  opened.size = static_cast<std::uint64_t>(facts.st_size);
  return opened;
}

}  // namespace

Follower::Follower(std::filesystem::path file, bool from_start) : file_(std::move(file)) {
  const Opened opened = Open(file_);
  identity_ = opened.identity;
  if (!from_start) at_ = opened.size;
}

void Follower::Look(const TakeLine& take) {
  const Opened opened = Open(file_);
  if (!opened.file) return;
  if (opened.identity != identity_ || opened.size < at_) {
    identity_ = opened.identity;
    at_ = 0;
    begun_.clear();
  }
  std::string piece(kPiece, '\0');
  for (;;) {
    const ssize_t got =
        pread(opened.file.get(), piece.data(), piece.size(), static_cast<off_t>(at_));
    if (got <= 0) return;
    at_ += static_cast<std::uint64_t>(got);
    std::string_view rest(piece.data(), static_cast<std::size_t>(got));
    for (std::size_t end = 0; (end = rest.find('\n')) != rest.npos; rest.remove_prefix(end + 1)) {
      begun_.append(rest.substr(0, end));
      take(begun_);
      begun_.clear();
    }
    begun_.append(rest);
  }
}

}  // namespace quivord::trace
