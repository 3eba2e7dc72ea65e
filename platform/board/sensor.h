// The light sensor of the multi-function cards: a request of 11 bytes, an answer of 5.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace board {

inline constexpr std::uint32_t kSensorRegister = 0x06000000;
inline constexpr std::size_t kSensorAnswerSize = 5;

// Whether what was written to the sensor's register asks for a reading.
bool IsSensorRequest(std::span<const std::uint8_t> data);

// What every sensor of the board answers now, by the file `sensors/lux`.
std::array<std::uint8_t, kSensorAnswerSize> SensorAnswer();

}  // namespace board
