#include "board/files.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace board {
namespace {

constexpr std::size_t kSmall = 4096;  // files up to this get their room when they are made

std::string Reason() { return std::strerror(errno); }

}  // namespace

void Fail(const std::string& message) {
  std::fprintf(stderr, "board: %s\n", message.c_str());
  _exit(1);  // other threads may be running: no destructors, no flush that may wait
}

FileHandle::~FileHandle() {
  if (descriptor_ >= 0) close(descriptor_);
}

FileHandle TryLockFolder(const std::filesystem::path& folder) {
  FileHandle handle(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  while (handle && flock(handle.get(), LOCK_EX) != 0) {
    if (errno != EINTR) return FileHandle(-1);
  }
  return handle;
}

FileHandle LockFolder(const std::filesystem::path& folder) {
  FileHandle handle = TryLockFolder(folder);
  if (!handle) Fail("cannot lock " + folder.string() + ": " + Reason());
  return handle;
}

std::optional<std::string> ReadWhole(const std::filesystem::path& path) {
  const FileHandle file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  struct stat status {};
  if (!file || fstat(file.get(), &status) != 0) return std::nullopt;
  std::string text;
  std::size_t size = 0;
  while (true) {
    // One byte more than the file says that it has shows its end; some say 0 and have more.
    text.resize(std::max(static_cast<std::size_t>(status.st_size), size + kSmall) + 1);
    const auto got = read(file.get(), text.data() + size, text.size() - size);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return std::nullopt;
    if (got == 0) break;
    size += static_cast<std::size_t>(got);
  }
  text.resize(size);
  return text;
}

bool WriteAll(int file, std::string_view text) {
  while (!text.empty()) {
    const auto written = write(file, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

bool ReplaceWhole(const std::filesystem::path& path, std::string_view text) {
  std::string fresh = path.string() + ".XXXXXX";
  const FileHandle file(mkostemp(fresh.data(), O_CLOEXEC));
  if (!file) return false;
  if (fchmod(file.get(), 0644) == 0 && WriteAll(file.get(), text) &&
      std::rename(fresh.c_str(), path.c_str()) == 0) {
    return true;
  }
  unlink(fresh.c_str());
  return false;
}

void CreateText(const std::filesystem::path& path, std::string_view text) {
  if (std::filesystem::exists(path)) return;
  if (!ReplaceWhole(path, text)) Fail("cannot create " + path.string() + ": " + Reason());
}

bool CreateSized(const std::filesystem::path& path, std::size_t size) {
  const bool is_new = !std::filesystem::exists(path);
  const FileHandle file(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644));
  struct stat status {};
  if (!file || fstat(file.get(), &status) != 0) {
    Fail("cannot open " + path.string() + ": " + Reason());
  }
  if (!S_ISREG(status.st_mode)) Fail(path.string() + " is not a plain file; remove it");
  if (static_cast<std::size_t>(status.st_size) < size &&
      ftruncate(file.get(), static_cast<off_t>(size)) != 0) {
    Fail("cannot enlarge " + path.string() + ": " + Reason());
  }
  // Whoever maps a file touches it without asking for room, and a full disk would end him.
  if (size <= kSmall && fallocate(file.get(), 0, 0, static_cast<off_t>(size)) != 0 &&
      errno == ENOSPC) {
    Fail("no room for " + path.string());
  }
  return is_new;
}

std::byte* MapShared(const std::filesystem::path& path, std::size_t size) {
  const FileHandle file(open(path.c_str(), O_RDWR | O_CLOEXEC));
  void* const memory =
      file ? mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file.get(), 0) : MAP_FAILED;
  if (memory == MAP_FAILED) Fail("cannot map " + path.string() + ": " + Reason());
  return static_cast<std::byte*>(memory);
}

std::vector<FilePart> FilledParts(const std::filesystem::path& path) {
  std::vector<FilePart> parts;
  const FileHandle file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file) Fail("cannot open " + path.string() + ": " + Reason());
  off_t end = 0;
  for (off_t begin = 0; (begin = lseek(file.get(), end, SEEK_DATA)) >= 0;) {
    end = lseek(file.get(), begin, SEEK_HOLE);
    if (end < 0) break;
    parts.push_back({static_cast<std::size_t>(begin), static_cast<std::size_t>(end)});
  }
  return parts;
}

}  // namespace board
