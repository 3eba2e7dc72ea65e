// The flash stores as the daemon reaches them: bounds, faults, power cuts, trace, then the files.
#include <fcntl.h>
#include <platform/flash.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <mutex>
#include <shared_mutex>
#include <span>
#include <vector>

#include "board/board.h"
#include "board/faults.h"
#include "board/files.h"
#include "board/journal.h"
#include "board/power.h"
#include "board/stores.h"

namespace board {
namespace {

// A reader never sees half of a write, and a cut ends the process with no write under way.
std::shared_mutex g_stores;

std::atomic<bool> g_unusable{false};  // the stores could not be opened

struct Access {
  char direction;
  Store store;
  std::uint32_t address;
  std::uint32_t length;

  bool Possible(const void* data) const {
    return address <= kStoreSize && length <= kStoreSize - address &&
           (data != nullptr || length == 0) && !g_unusable.load(std::memory_order_relaxed);
  }
};

void TraceAccess(const Access& access, bool done, const void* data, std::size_t moved) {
  char words[64];
  const auto store = kStoreNames[static_cast<std::size_t>(access.store)];
  std::snprintf(words, sizeof words, "%c %s 0x%08x %u %s ", access.direction, store.data(),
                access.address, access.length, done ? "ok" : "fail");
  Trace(TraceKind::kFlash, words + Hex(data, moved));
}

FileHandle OpenStore(Store store, int flags) {
  static const bool created = (CreateStores(), true);
  static_cast<void>(created);
  return FileHandle(open(StorePath(store).c_str(), flags | O_CLOEXEC, 0644));
}

// Whether the access lies in what the file has: a store that something has cut short fails behind
// its end. The temporary store is made by its first write, no longer than that needs: one that a
// reset left unfinished is then told from a whole one.
bool LiesIn(const FileHandle& file, const Access& access) {
  struct stat status {};
  if (!file || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
  if (access.direction == 'W' && access.store == Store::kTmp) return true;
  return std::uint64_t{access.address} + access.length <=
         static_cast<std::uint64_t>(status.st_size);
}

// All bytes or none.
bool ReadStore(const Access& access, std::uint8_t* data) {
  const FileHandle file = OpenStore(access.store, O_RDONLY);
  if (!LiesIn(file, access)) return false;
  return pread(file.get(), data, access.length, access.address) ==
         static_cast<ssize_t>(access.length);
}

// Writes the first `moved` bytes and notes them.
bool WriteStore(const Access& access, std::span<const std::uint8_t> moved) {
  const int creation = access.store == Store::kTmp ? O_CREAT : 0;
  const FileHandle file = OpenStore(access.store, O_RDWR | creation);
  if (!LiesIn(file, access)) return false;
  std::vector<std::uint8_t> before(moved.size());  // beyond the end of a new store: zeros
  if (pread(file.get(), before.data(), before.size(), access.address) < 0) return false;
  NoteWrite(access.store, access.address, before, moved);
  return pwrite(file.get(), moved.data(), moved.size(), access.address) ==
         static_cast<ssize_t>(moved.size());
}

// Power fails in the middle of this write.
[[noreturn]] void Cut(const Access& access, const std::uint8_t* data) {
  const std::size_t half = access.length / 2;
  WriteStore(access, {data, half});
  if (Tracing(TraceKind::kFlash)) TraceAccess(access, false, data, half);
  LoseWrites(static_cast<std::uint32_t>(FaultCount(Fault::kFlashLoss)));
  _exit(kCutStatus);
}

std::int32_t Write(Store store, std::uint32_t address, std::uint32_t length,
                   const std::uint8_t* data) {
  const Access access{'W', store, address, length};
  const auto order = TraceOrder(TraceKind::kFlash);
  const std::unique_lock hold(g_stores);
  bool done = access.Possible(data) && !TakeFault(Fault::kFlashWrite);
  if (done && CountDown(Fault::kFlashCut) == 0) Cut(access, data);
  done = done && WriteStore(access, {data, length});
  if (order) TraceAccess(access, done, data, done ? length : 0);
  return done ? 0 : -1;
}

}  // namespace
}  // namespace board

int32_t Flash_Init() {
  board::CreateStores();
  const std::unique_lock hold(board::g_stores);
  const bool good = board::CheckStores();
  board::g_unusable = !good;
  return good ? 0 : -1;
}

int32_t ReadDataFromFlashx(uint32_t address, uint32_t length, uint8_t* data) {
  const board::Access access{'R', board::Store::kLive, address, length};
  const auto order = board::TraceOrder(board::TraceKind::kFlash);
  const std::shared_lock hold(board::g_stores);
  const bool done = access.Possible(data) && !board::TakeFault(board::Fault::kFlashRead) &&
                    board::ReadStore(access, data);
  if (order) board::TraceAccess(access, done, data, done ? length : 0);
  return done ? 0 : -1;
}

int32_t WriteDataToFlashx(uint32_t address, uint32_t length, const uint8_t* data) {
  return board::Write(board::Store::kLive, address, length, data);
}

int32_t WriteDataToFactoryFlashx(uint32_t address, uint32_t length, const uint8_t* data) {
  return board::Write(board::Store::kFactory, address, length, data);
}

int32_t WriteDataToFactoryTmpFlashx(uint32_t address, uint32_t length, const uint8_t* data) {
  return board::Write(board::Store::kTmp, address, length, data);
}
