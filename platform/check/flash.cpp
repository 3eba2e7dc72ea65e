// platform/flash.h: the three stores. What the live one held is put back.
#include <platform/flash.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <thread>

#include "check/report.h"

namespace check {
namespace {

constexpr std::uint32_t kStoreSize = 16 << 20;
constexpr std::uint32_t kArea = 4096;
constexpr std::uint32_t kPlace = kStoreSize - kArea;  // where the checks write

bool Read(std::uint32_t address, Buffer& buffer) {
  return ReadDataFromFlashx(address, static_cast<std::uint32_t>(buffer.size()), buffer.data()) == 0;
}

bool Write(std::uint32_t address, Buffer& buffer) {
  return WriteDataToFlashx(address, static_cast<std::uint32_t>(buffer.size()), buffer.data()) == 0;
}

// Accesses that reach past the end, one of them past 32 bits. A store that moves them all the same
// changes no more than its first and last bytes, which are put back.
constexpr struct {
  std::uint32_t address;
  std::uint32_t length;
} kOutside[] = {{kStoreSize - 8, 16}, {kStoreSize, 1}, {0xFFFFFFF8, 16}};

void ReadsPastTheEnd(Report& report) {
  Buffer whole(kStoreSize + 1);
  bool refused = ReadDataFromFlashx(0, kStoreSize + 1, whole.data()) != 0;
  for (const auto& access : kOutside) {
    refused = ReadDataFromFlashx(access.address, access.length, whole.data()) != 0 && refused;
  }
  report.Holds(refused && whole.Untouched(), "a read past the end fails and moves nothing");
}

template <class Function>
bool RefusesPastTheEnd(Function write) {
  Buffer bytes(16);
  bool refused = true;
  for (const auto& access : kOutside) {
    refused = write(access.address, access.length, bytes.data()) != 0 && refused;
  }
  return refused;
}

void WritesPastTheEnd(Report& report, const Options& options) {
  Buffer first(16), last(kArea), first_after(16), last_after(kArea);
  const bool readable = Read(0, first) && Read(kPlace, last);
  const bool refused = readable && RefusesPastTheEnd(WriteDataToFlashx);
  const bool same = refused && Read(0, first_after) && Read(kPlace, last_after) &&
                    first_after == first && last_after == last;
  report.Holds(same, "a write past the end fails and moves nothing");
  if (readable && !same) Write(0, first);
  constexpr const char* kClaim = "the factory stores refuse a write past their end";
  if (!options.lasting) return report.Skip(kClaim, "needs --lasting");
  const bool factory = RefusesPastTheEnd(WriteDataToFactoryFlashx);
  report.Holds(RefusesPastTheEnd(WriteDataToFactoryTmpFlashx) && factory, kClaim);
}

void ReadBack(Report& report) {
  Buffer pattern(kArea), seen(kArea), part(3);
  for (std::uint32_t i = 0; i < kArea; ++i) pattern.data()[i] = static_cast<std::uint8_t>(i * 7);
  report.Holds(Write(kPlace, pattern) && Read(kPlace, seen) && seen == pattern,
               "what is written is read back, without an erase");
  std::fill_n(part.data(), part.size(), std::uint8_t{0});
  std::fill_n(pattern.data() + 101, part.size(), std::uint8_t{0});
  report.Holds(Write(kPlace + 101, part) && Read(kPlace, seen) && seen == pattern,
               "a write changes its own bytes alone");
}

// A writer swaps two fillings while readers look; no look may find both.
void WholeWrites(Report& report) {
  std::atomic<bool> ended{false};
  const auto write = [&] {
    Buffer filling(kArea);
    bool good = true;
    for (int i = 0; i < 300; ++i) {
      std::memset(filling.data(), i % 2 == 0 ? 0x33 : 0xCC, kArea);
      good = Write(kPlace, filling) && good;
    }
    ended = true;
    return good;
  };
  const auto look = [&] {
    bool whole = true;
    while (!ended) {
      Buffer seen(kArea);
      whole = Read(kPlace, seen) &&
              std::count(seen.data(), seen.data() + kArea, seen.data()[0]) == kArea && whole;
    }
    return whole;
  };
  Buffer filling(kArea);
  std::memset(filling.data(), 0x33, kArea);
  const bool filled = Write(kPlace, filling);
  report.Holds(filled && AtOnce(3, [&](int i) { return i == 0 ? write() : look(); }),
               "a reader never sees half of a write");
}

void OtherStores(Report& report, const Options& options) {
  constexpr const char* kClaims[] = {"the factory store takes a write",
                                     "the prepared copy takes a write"};
  Buffer bytes(16), before(16), after(16);
  const auto address = static_cast<std::uint32_t>(kStoreSize - bytes.size());
  int i = 0;
  for (const auto write : {WriteDataToFactoryFlashx, WriteDataToFactoryTmpFlashx}) {
    const char* const claim = kClaims[i++];
    if (!options.lasting) {
      report.Skip(claim, "needs --lasting");
      continue;
    }
    const bool good =
        Read(address, before) && write(address, 16, bytes.data()) == 0 && Read(address, after);
    report.Holds(good && before == after, claim);
  }
}

}  // namespace

void Flash(Report& report, const Options& options) {
  report.Holds(Flash_Init() == 0, "the stores open");
  Buffer old(kArea);
  const bool readable = report.Holds(Read(kPlace, old), "the live store is read");
  ReadsPastTheEnd(report);
  WritesPastTheEnd(report, options);
  ReadBack(report);
  WholeWrites(report);
  OtherStores(report, options);
  Buffer restored(kArea);
  report.Holds(readable && Write(kPlace, old) && Read(kPlace, restored) && restored == old,
               "the live store is as it was");
}

}  // namespace check
