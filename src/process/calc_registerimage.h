// Register images: the fields of a record in their order, packed little-endian without gaps.
//
//   inline constexpr RegisterImage kClockImage{&Clock::enable, &Clock::frequency};
//   static_assert(kClockImage.kSize == 5);
//   WriteRegisters(kClockImage.Pack(clock));
//
// Pure; any thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <tuple>
#include <type_traits>

namespace ZEPH_MCUC {

template <class Record, class... Fields>
class RegisterImage {
 public:
  static constexpr std::size_t kSize = (sizeof(Fields) + ...);  // bytes
  using Bytes = std::array<uint8_t, kSize>;

  constexpr explicit RegisterImage(Fields Record::*... fields) : fields_(fields...) {
    static_assert((std::is_unsigned_v<Fields> && ...), "an image holds unsigned numbers");
  }

  constexpr Bytes Pack(const Record& record) const {
    Bytes bytes{};
    std::size_t at = 0;
    const auto put = [&](auto value) {
      for (std::size_t i = 0; i < sizeof(value); ++i) {
        bytes[at++] = static_cast<uint8_t>(value >> (8 * i));
      }
    };
    std::apply([&](auto... field) { (put(record.*field), ...); }, fields_);
    return bytes;
  }

  constexpr Record Unpack(std::span<const uint8_t, kSize> bytes) const {
    Record record{};
    std::size_t at = 0;
    const auto take = [&]<class Field>(Field& value) {
      uint64_t number = 0;
      for (std::size_t i = 0; i < sizeof(Field); ++i) {
        number |= uint64_t{bytes[at++]} << (8 * i);
      }
      value = static_cast<Field>(number);
    };
    std::apply([&](auto... field) { (take(record.*field), ...); }, fields_);
    return record;
  }

 private:
  std::tuple<Fields Record::*...> fields_;
};

}  // namespace ZEPH_MCUC
