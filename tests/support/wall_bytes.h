// What a device would hold of a wall, to the byte.
#pragma once

#include <memory>

#include "proto/mosaic.h"
#include "wall/apply.h"

namespace wall_bytes {

using quivord::wall::DeviceBytes;

// A device whose cards have a size and that holds nothing else.
inline std::unique_ptr<DeviceBytes> Blank(std::uint16_t width, std::uint16_t height) {
  auto bytes = std::make_unique<DeviceBytes>();
  bytes->cardSize = {static_cast<std::uint8_t>(width), static_cast<std::uint8_t>(width >> 8),
                     static_cast<std::uint8_t>(height), static_cast<std::uint8_t>(height >> 8)};
  return bytes;
}

// A device with the smart wall, or the advanced one.
inline std::unique_ptr<DeviceBytes> With(const quivord::wall::Smart& smart,
                                         std::uint16_t width = 128, std::uint16_t height = 128) {
  auto bytes = Blank(width, height);
  quivord::wall::ApplySmart(smart, *bytes);
  return bytes;
}
inline std::unique_ptr<DeviceBytes> With(const quivord::wall::PortRecords& records,
                                         std::uint16_t width = 128, std::uint16_t height = 128) {
  auto bytes = Blank(width, height);
  quivord::wall::ApplyAdvanced(records, *bytes);
  return bytes;
}

}  // namespace wall_bytes
