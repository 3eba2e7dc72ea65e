// A short sign of many results: the same on every machine where all of them are the same to the
// bit.
#pragma once

#include <bit>
#include <concepts>
#include <cstdint>
#include <span>

namespace digest {

// FNV-1a with 64 bits, over numbers in little-endian order.
class Digest {
 public:
  void Add(std::span<const std::uint8_t> bytes) {
    for (const std::uint8_t byte : bytes) value_ = (value_ ^ byte) * kPrime;
  }

  template <std::integral... Numbers>
  void Add(Numbers... numbers) {
    (AddNumber(static_cast<std::uint64_t>(numbers)), ...);
  }

  void Add(float number) { Add(std::bit_cast<std::uint32_t>(number)); }
  void Add(double number) { Add(std::bit_cast<std::uint64_t>(number)); }

  std::uint64_t value() const { return value_; }

 private:
  static constexpr std::uint64_t kPrime = 0x100000001B3;

  void AddNumber(std::uint64_t number) {
    for (int shift = 0; shift < 64; shift += 8) {
      value_ = (value_ ^ (number >> shift & 0xFF)) * kPrime;
    }
  }

  std::uint64_t value_ = 0xCBF29CE484222325;
};

// One kind of result, over random inputs from a seed of its own.
struct Subject {
  const char* name;
  void (*run)(Digest& digest);
};

std::span<const Subject> WallSubjects();     // layouts, position tables, frames
std::span<const Subject> VideoSubjects();    // timings, EDIDs, scalers, splits
std::span<const Subject> PictureSubjects();  // gamma tables and colour matrices

}  // namespace digest
