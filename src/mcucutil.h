// Bytes that threads share, byte helpers, delays.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>

namespace ZEPH_MCUC {

using u8 = uint8_t;
using u16 = uint16_t;
using u32 = uint32_t;

// A value that one thread writes while another reads it: each access is one plain load or store and
// no order beyond that is promised.
template <class T>
class Relaxed {
 public:
  constexpr Relaxed(T value = T{}) : value_(value) {}
  Relaxed(const Relaxed&) = delete;
  Relaxed& operator=(const Relaxed&) = delete;

  operator T() const { return value_.load(std::memory_order_relaxed); }
  T operator=(T value) {
    value_.store(value, std::memory_order_relaxed);
    return value;
  }

 private:
  std::atomic<T> value_;
};

using vu8 = Relaxed<uint8_t>;
using vu16 = Relaxed<uint16_t>;
using vu32 = Relaxed<uint32_t>;

// A parameter array of N bytes that threads share without a lock; multi-byte values in it are
// little-endian and may be seen half changed. Ranges are cut to the array: what would lie past its
// end is neither read nor written.
template <std::size_t N>
class SharedBytes {
 public:
  static constexpr std::size_t size() { return N; }

  Relaxed<uint8_t>& operator[](std::size_t at) { return bytes_[at]; }
  const Relaxed<uint8_t>& operator[](std::size_t at) const { return bytes_[at]; }

  // Copies `from` to offset `at`, `into` from offset `at`. Bytes of `into` past the end stay.
  void write(std::size_t at, std::span<const uint8_t> from) {
    for (std::size_t i = 0; i < from.size() && at + i < N; ++i) bytes_[at + i] = from[i];
  }
  void read(std::size_t at, std::span<uint8_t> into) const {
    for (std::size_t i = 0; i < into.size() && at + i < N; ++i) into[i] = bytes_[at + i];
  }

  // A copy of `Length` bytes from `at`, zeros past the end.
  template <std::size_t Length>
  std::array<uint8_t, Length> snapshot(std::size_t at) const {
    std::array<uint8_t, Length> copy{};
    read(at, copy);
    return copy;
  }

  uint16_t u16(std::size_t at) const {
    return static_cast<uint16_t>(bytes_[at] | bytes_[at + 1] << 8);
  }
  uint32_t u32(std::size_t at) const { return u16(at) | static_cast<uint32_t>(u16(at + 2)) << 16; }
  void setU16(std::size_t at, uint16_t value) {
    bytes_[at] = static_cast<uint8_t>(value);
    bytes_[at + 1] = static_cast<uint8_t>(value >> 8);
  }
  void setU32(std::size_t at, uint32_t value) {
    setU16(at, static_cast<uint16_t>(value));
    setU16(at + 2, static_cast<uint16_t>(value >> 16));
  }

 private:
  std::array<Relaxed<uint8_t>, N> bytes_;
};

// Waits `ms` milliseconds.
void Delay(int ms);

// Writes each byte as two upper-case hexadecimal digits and a blank, closes the text and returns
// its length, 3 * length. A null or empty source, or 3 * length not below `max`, gives an empty
// text and 0. `dst` has room for `max` characters.
int Bytes2String(const uint8_t* src, int length, char* dst, int max);

}  // namespace ZEPH_MCUC
