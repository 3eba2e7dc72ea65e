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

// Accesses that reach past the end, one of them past 32 bits.
constexpr struct {
  std::uint32_t address;
  std::uint32_t length;
} kOutside[] = {{kStoreSize - 8, 16}, {kStoreSize, 1}, {0xFFFFFFF8, 16}, {0, kStoreSize + 1}};

void Bounds(Report& report) {
  bool refused = true;
  Buffer whole(kStoreSize + 1);
  for (const auto& access : kOutside) {
    refused = ReadDataFromFlashx(access.address, access.length, whole.data()) != 0 && refused;
  }
  report.Holds(refused && whole.Untouched(), "a read past the end fails and moves nothing");
  Buffer before(kArea), after(kArea);
  refused = Read(kPlace, before);
  for (const auto& access : kOutside) {
    for (const auto write :
         {WriteDataToFlashx, WriteDataToFactoryFlashx, WriteDataToFactoryTmpFlashx}) {
      refused = write(access.address, access.length, whole.data()) != 0 && refused;
    }
  }
  report.Holds(refused && Read(kPlace, after) && after == before,
               "a write past the end fails and moves nothing");
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
  Bounds(report);
  ReadBack(report);
  WholeWrites(report);
  OtherStores(report, options);
  Buffer restored(kArea);
  report.Holds(readable && Write(kPlace, old) && Read(kPlace, restored) && restored == old,
               "the live store is as it was");
}

}  // namespace check
