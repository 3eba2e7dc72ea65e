// The live store beside what it held before an operation and after each of its writes: whether each
// region still holds something that the operation means.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace sweep {

using Bytes = std::vector<std::uint8_t>;
using View = std::span<const std::uint8_t>;

// A stretch of the live store that an operation may change.
struct Region {
  std::uint32_t address;
  std::uint32_t length;
  int writes = 1;  // that touch it in one operation: what stands between two of them is right too
  bool free = false;  // holds a count, or what depends on how often the operation ran: any value
};

// Whether one of `regions` holds the byte at `address`.
bool Covers(const std::vector<Region>& regions, std::size_t address);

// `text` behind the address.
std::string At(std::size_t address, const std::string& text);

// One write to the live store.
struct StoreWrite {
  std::uint32_t address;
  Bytes data;
};

// The writes of a trace that holds flash lines, in their order; none for one to another store.
std::vector<std::optional<StoreWrite>> TracedWrites(const std::vector<std::string>& lines);

// The live store as it is now, and how it is made to hold `bytes` again.
View Store();
void PutStore(View bytes);

// `before` with the first `count` of `writes`.
Bytes WithWrites(const Bytes& before, const std::vector<StoreWrite>& writes, std::size_t count);

// What is wrong with how often `writes` touch the regions, or empty.
std::string Recount(const std::vector<StoreWrite>& writes, const std::vector<Region>& regions);

// Where one store differs from another, or empty. A free region never differs.
std::string Difference(View store, View wanted, const std::vector<Region>& regions);

// What power may have done to writes.
struct Damage {
  std::optional<std::size_t> torn;  // index of the write that moved only a part
  bool lost = false;                // any write may be undone
};

// What is wrong with `store` in the middle of an operation that turns `before` by `writes`, or
// empty: each region holds its old content or that after one of the writes, a damaged one a mix of
// their bytes, and outside the regions nothing has changed.
std::string Judge(View store, View before, const std::vector<StoreWrite>& writes,
                  const std::vector<Region>& regions, const Damage& damage);

}  // namespace sweep
