#include "board/journal.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <random>
#include <vector>

#include "board/board.h"
#include "board/faults.h"
#include "board/files.h"

namespace board {
namespace {

// The file begins with the number of syncs when its first write was noted; a write is this record
// and the bytes before and after.
struct Record {
  std::uint32_t store;
  std::uint32_t address;
  std::uint32_t length;
};

// Beyond this, old writes count as on disk, as they would be by then.
constexpr std::size_t kMostNoted = 16U << 20;

std::filesystem::path File() { return Folder() / "run/unsynced"; }

template <typename Value>
std::string_view BytesOf(const Value& value) {
  return {reinterpret_cast<const char*>(&value), sizeof value};
}

std::string_view BytesOf(std::span<const std::uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// Cuts a value off the front of `rest`; false where there is none.
template <typename Value>
bool Take(std::string_view& rest, Value& value) {
  if (rest.size() < sizeof value) return false;
  std::memcpy(&value, rest.data(), sizeof value);
  rest.remove_prefix(sizeof value);
  return true;
}

struct Write {
  Record where;
  std::string_view before;
  std::string_view after;
};

std::vector<Write> Writes(std::string_view journal) {
  std::vector<Write> writes;
  std::int32_t syncs = 0;
  Record where{};
  if (!Take(journal, syncs) || syncs != FaultCount(Fault::kSyncCount)) return writes;
  while (Take(journal, where) && journal.size() / 2 >= where.length) {
    writes.push_back(
        {where, journal.substr(0, where.length), journal.substr(where.length, where.length)});
    journal.remove_prefix(std::size_t{2} * where.length);
  }
  return writes;
}

void Put(const Write& write, std::string_view bytes) {
  const auto path = StorePath(static_cast<Store>(write.where.store));
  const FileHandle file(open(path.c_str(), O_WRONLY | O_CLOEXEC));
  if (!file || pwrite(file.get(), bytes.data(), bytes.size(), write.where.address) !=
                   static_cast<ssize_t>(bytes.size())) {
    Fail("cannot take writes back from " + path.string());
  }
}

// The journal, open and of this sync's age; false where it can't be written.
FileHandle OpenJournal() {
  FileHandle file(open(File().c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644));
  if (!file) return {};
  const std::int32_t syncs = FaultCount(Fault::kSyncCount);
  std::int32_t noted_syncs = 0;
  const bool has_age = pread(file.get(), &noted_syncs, sizeof noted_syncs, 0) == sizeof noted_syncs;
  const auto end = lseek(file.get(), 0, SEEK_END);
  if (has_age && noted_syncs == syncs && static_cast<std::size_t>(end) < kMostNoted) return file;
  if (ftruncate(file.get(), 0) != 0 || lseek(file.get(), 0, SEEK_SET) != 0 ||
      !WriteAll(file.get(), BytesOf(syncs))) {
    return {};
  }
  return file;
}

// What can't be noted counts as on disk, and so does all that was noted before it: a journal with a
// gap would put back more than a power cut takes.
void GiveUp() {
  static std::once_flag said;
  std::call_once(said, [] {
    std::fprintf(stderr, "board: cannot write %s; a power cut loses no writes until it can\n",
                 File().c_str());
  });
  ForgetWrites();
}

}  // namespace

void NoteWrite(Store store, std::uint32_t address, std::span<const std::uint8_t> before,
               std::span<const std::uint8_t> after) {
  const Record where{static_cast<std::uint32_t>(store), address,
                     static_cast<std::uint32_t>(after.size())};
  std::string text(BytesOf(where));
  text.append(BytesOf(before)).append(BytesOf(after));
  const FileHandle file = OpenJournal();
  if (!file || !WriteAll(file.get(), text)) GiveUp();
}

void LoseWrites(std::uint32_t seed) {
  const auto journal = ReadWhole(File());
  if (seed == 0 || !journal) return;
  const auto writes = Writes(*journal);
  for (auto write = writes.rbegin(); write != writes.rend(); ++write) Put(*write, write->before);
  std::mt19937 random(seed);
  for (const Write& write : writes) {
    if ((random() & 1U) != 0) Put(write, write.after);
  }
  ForgetWrites();
}

void ForgetWrites() { unlink(File().c_str()); }

}  // namespace board
