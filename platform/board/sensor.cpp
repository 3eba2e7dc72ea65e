#include "board/sensor.h"

#include <algorithm>

#include "board/board.h"
#include "board/files.h"
#include "board/text.h"

namespace board {
namespace {

// Behind four bytes that name the sensor.
constexpr std::array<std::uint8_t, 7> kRequest = {0x55, 0xAA, 0x01, 0x02, 0x80, 0xFF, 0x81};
constexpr std::size_t kNameSize = 4;

constexpr std::uint8_t kGood = 0x80;

}  // namespace

bool IsSensorRequest(std::span<const std::uint8_t> data) {
  return data.size() == kNameSize + kRequest.size() &&
         std::equal(kRequest.begin(), kRequest.end(), data.begin() + kNameSize);
}

std::array<std::uint8_t, kSensorAnswerSize> SensorAnswer() {
  const auto text = ReadWhole(Folder() / "sensors/lux");
  std::string_view rest = text ? std::string_view(*text) : "0";
  const auto lux = NumberBetween(Trim(TakeUntil(rest, '\n')), 0, 0xFFFFFFFF);
  if (!lux) return {1, 2, 0, 0, 0};
  const std::uint32_t half = *lux / 2 & 0x7FFF;
  return {1, 2, static_cast<std::uint8_t>(kGood + (half >> 8)),
          static_cast<std::uint8_t>(half & 0xFF), 0};
}

}  // namespace board
