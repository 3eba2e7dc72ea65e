#include "commands/store_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "file_fault.h"
#include "proto/calc_flashmap.h"

namespace ctl {
namespace {

namespace fs = std::filesystem;

bool Fits(std::uint32_t address, std::size_t length) {
  using ZEPH_MCUC::flash::kStoreSize;
  return address <= kStoreSize && length <= kStoreSize - address;
}

// Takes the lock that the daemon takes when it starts.
board::FileHandle TakeLock(const fs::path& folder, std::string& fault) {
  const auto path = folder / "var/run/quivord.pid";
  board::FileHandle file(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
  struct flock lock {};
  lock.l_type = F_WRLCK;
  if (!file) {
    fault = quivord::CannotWrite(path, errno);
  } else if (fcntl(file.get(), F_SETLK, &lock) != 0) {
    fault = "the daemon runs on this board; its stores are its own until it is stopped";
    return {};
  }
  return file;
}

}  // namespace

std::optional<StoreFile> StoreFile::Open(const fs::path& folder, board::Store store,
                                         std::string& fault) {
  if (!fs::is_directory(folder)) {
    fault = quivord::NoBoardAt(folder);
    return std::nullopt;
  }
  setenv("QUIVORD_BOARD", folder.c_str(), 1);
  board::Folder();  // whatever is missing in it is created
  board::FileHandle lock = TakeLock(folder, fault);
  if (!lock) return std::nullopt;
  board::CreateStores();
  const auto path = board::StorePath(store);
  board::FileHandle file(open(path.c_str(), O_RDWR | O_CLOEXEC));
  if (!file) fault = quivord::CannotRead(path, errno);
  if (file && !board::CheckStores()) fault = path.string() + " is no store, or can't be filled up";
  if (!fault.empty()) return std::nullopt;
  return StoreFile(std::move(lock), std::move(file));
}

std::optional<std::vector<std::uint8_t>> StoreFile::Read(std::uint32_t address,
                                                         std::uint32_t length) const {
  if (!Fits(address, length)) return std::nullopt;
  std::vector<std::uint8_t> bytes(length);
  const auto got = pread(file_.get(), bytes.data(), length, address);
  return got == static_cast<ssize_t>(length) ? std::optional(bytes) : std::nullopt;
}

bool StoreFile::Write(std::uint32_t address, const std::vector<std::uint8_t>& bytes) const {
  return Fits(address, bytes.size()) && pwrite(file_.get(), bytes.data(), bytes.size(), address) ==
                                            static_cast<ssize_t>(bytes.size());
}

}  // namespace ctl
