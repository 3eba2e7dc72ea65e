// The record of a screen configuration, byte by byte: what a client writes to configure the screen
// and what the store keeps of it. Multi-byte values are little-endian.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ZEPH_MCUC {

// How the screen was configured: the record's status byte, and `LEDConfigStatus`.
inline constexpr uint8_t kConfiguredSmart = 0xA8;
inline constexpr uint8_t kConfiguredAdvanced = 0xB8;
inline constexpr uint8_t kConfiguredBySoftware = 0xC8;

namespace shortcut {
inline constexpr uint32_t kBase = 0x02810000;  // register address of offset 0

inline constexpr uint32_t kStatus = 0x00;
inline constexpr uint8_t kSubmit = 0xB9;  // written to `kStatus`: configure by the ports' records

// The smart configuration: a rectangle cut into cables. A write that begins between `kFirst` and
// `kLast` asks for one.
inline constexpr uint32_t kFirst = 0x10;
inline constexpr uint32_t kMode = 0x11;
inline constexpr uint32_t kRows = 0x16;
inline constexpr uint32_t kColumns = 0x17;
inline constexpr uint32_t kBoxNumber = 0x18;  // 16 bits: cabinets that one cable carries
inline constexpr uint32_t kLast = 0x1C;

// The advanced configuration: a record of 64 bytes a port, and in it the places of its fields.
inline constexpr uint32_t kPortRecords = 0x50;
inline constexpr uint32_t kPortRecordSize = 0x40;
inline constexpr uint32_t kPortMode = 0x01;
inline constexpr uint32_t kPortRows = 0x06;
inline constexpr uint32_t kPortColumns = 0x07;
inline constexpr uint32_t kPortX = 0x0A;  // 16 bits, pixels
inline constexpr uint32_t kPortY = 0x0C;

constexpr uint32_t PortRecord(std::size_t port) {
  return kPortRecords + kPortRecordSize * static_cast<uint32_t>(port);
}

}  // namespace shortcut

}  // namespace ZEPH_MCUC
