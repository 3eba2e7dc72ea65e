// The device's identity as bytes and as text. Pure.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace ZEPH_MCUC {

inline constexpr std::size_t kSerialBytes = 8;
inline constexpr std::size_t kSerialDigits = 16;
inline constexpr char SN_0[] = "0000000000000000";  // a blank serial number
inline constexpr std::array<uint8_t, kSerialBytes> kDefaultSerial = {0x13, 0x03, 0x0D, 0x00,
                                                                     0xFF, 0xFF, 0xFF, 0xFF};

// Places in the basic area of 256 bytes.
namespace basicinfo {
inline constexpr uint32_t kSize = 256;
inline constexpr uint32_t kModel = 2;
inline constexpr uint32_t kModelBytes = 2;
inline constexpr uint32_t kFixed = 2;  // bytes 2 to 8 return to fixed values at every start
inline constexpr uint32_t kClient7 = 7;
inline constexpr uint32_t kClient10 = 10;
inline constexpr uint32_t kSerial = 22;
inline constexpr uint32_t kBlank = 30;
inline constexpr uint32_t kValid = 31;
inline constexpr uint32_t kMac = 61;  // one byte, then six of the address
inline constexpr uint32_t kMacBytes = 7;
}  // namespace basicinfo

// A serial number as 16 hexadecimal digits in lower case.
std::string SerialText(std::span<const uint8_t, kSerialBytes> serial);

// Hexadecimal text to bytes: `length` characters give length / 2 bytes, rounded up; a character
// that is no digit counts as 0. Of an odd number of bytes the last one is its first digit times 16
// alone.
void HexToBytes(std::string_view text, std::size_t length, std::span<uint8_t> into);

// Whether a stored serial number is missing its digits: all 16 of them are "0".
bool IsBlankSerial(std::string_view text);

}  // namespace ZEPH_MCUC
