#include "live/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace quivord::live {
namespace {

struct stat StatusOf(int file) {
  struct stat status {};
  if (file < 0 || fstat(file, &status) != 0) status = {};
  return status;
}

}  // namespace

// Opening a pipe or a device in a file's place must not wait for anybody.
FileReader::FileReader(const std::filesystem::path& path)
    : file_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {
  if (!S_ISREG(StatusOf(file_.get()).st_mode)) file_ = board::FileHandle();
}

std::uint64_t FileReader::size() const {
  return static_cast<std::uint64_t>(StatusOf(file_.get()).st_size);
}

std::uint64_t FileReader::identity() const { return StatusOf(file_.get()).st_ino; }

std::int64_t FileReader::written_us() const {
  const auto time = StatusOf(file_.get()).st_mtim;
  return std::int64_t{time.tv_sec} * 1000000 + time.tv_nsec / 1000;
}

bool FileReader::Read(std::uint64_t at, std::span<std::uint8_t> into) const {
  while (!into.empty()) {
    const ssize_t got = pread(file_.get(), into.data(), into.size(), static_cast<off_t>(at));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return false;
    at += static_cast<std::uint64_t>(got);
    into = into.subspan(static_cast<std::size_t>(got));
  }
  return true;
}

std::optional<std::string> ReadText(const std::filesystem::path& path, std::size_t most) {
  const FileReader file(path);
  const std::uint64_t size = file.size();
  if (!file.there() || size > most) return std::nullopt;
  std::string text(size, '\0');
  if (!file.Read(0, {reinterpret_cast<std::uint8_t*>(text.data()), text.size()})) {
    return std::nullopt;
  }
  return text;
}

}  // namespace quivord::live
