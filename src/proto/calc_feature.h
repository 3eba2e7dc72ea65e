// The feature registers by offset: names of the bytes that the daemon acts on, and the places of
// the sixteen ports' values. Register n is 0x02000000 + n; below 0x1F0 also FPGA bus address n.
#pragma once

#include <array>
#include <cstdint>

namespace ZEPH_MCUC {

namespace feature {
inline constexpr uint32_t kBase = 0x02000000;
inline constexpr uint32_t kSize = 512;
inline constexpr uint32_t kBusEnd = 0x1F0;  // from here on bytes live in the array alone

inline constexpr uint32_t kClock = 0x11;          // year, month, day, hour, minute, second in BCD
inline constexpr uint32_t kSourceWaiting = 0x17;  // of the bus alone, like the source size
inline constexpr uint32_t kBusPage = 0x18;        // what a restore and a commit send begins here
inline constexpr uint32_t kRedundancy = 0x1E;     // ports 0 to 3, two bits each
inline constexpr uint32_t kNetLink = 0x1F;        // a bit each
inline constexpr uint32_t kPowerOnTime = 0x21;
inline constexpr uint32_t kInputMode = 0x23;  // forced to 0x20 where it isn't 0x20, 0x21 or 0x10
inline constexpr uint32_t kRealWidth = 0x24;
inline constexpr uint32_t kRealHeight = 0x26;
inline constexpr uint32_t kOffsetX = 0x28;
inline constexpr uint32_t kOffsetY = 0x2A;
inline constexpr uint32_t kSetWidth = 0x2C;
inline constexpr uint32_t kUartOvertime = 0x3F;
inline constexpr uint32_t kSourceSize = 0x46;  // width, height
inline constexpr uint32_t kMirrored = 0x4A;
inline constexpr uint32_t kAlwaysZero = 0x4B;
inline constexpr uint32_t kLowDelay = 0x74;
inline constexpr uint32_t kDistanceX = 0x91;
inline constexpr uint32_t kCorrection = 0x9C;
inline constexpr uint32_t kRole = 0x9D;
inline constexpr uint32_t kRedundancy4 = 0x9E;  // ports 4 to 7
inline constexpr uint32_t kNetLink4 = 0x9F;
inline constexpr uint32_t kDistanceY = 0xAC;
inline constexpr uint32_t kSync = 0xD4;
inline constexpr uint32_t kRedundancy8 = 0x120;  // ports 8 to 15, two bytes
inline constexpr uint32_t kNetLink8 = 0x126;
inline constexpr uint32_t kEdidFlag = 0x1A5;
inline constexpr uint32_t kFiberLink = 0x1D7;
inline constexpr uint32_t k4K = 0x1D8;
inline constexpr uint32_t kOptPortMode = 0x1DA;
inline constexpr uint32_t kOutput = 0x1DE;
inline constexpr uint32_t kReportAfresh = 0x1DF;
inline constexpr uint32_t kFiberToNet = 0x1E0;
inline constexpr uint32_t kHighSpeed = 0x1E9;
inline constexpr uint32_t kHdrSwitch = 0x1EA;
inline constexpr uint32_t kResetMark = 0x1EB;  // cleared in front of a factory reset's reboot
inline constexpr uint32_t kScreenWidth = 0x1EC;
inline constexpr uint32_t kScreenHeight = 0x1EE;
inline constexpr uint32_t kTestFlag = 0x1EF;
inline constexpr uint32_t kBypassX = 0x1F0;  // signed, 32 bits
inline constexpr uint32_t kBypassY = 0x1F4;
inline constexpr uint32_t kBypass = 0x1F8;

// FPGA cells behind the page; the image has other things at these numbers.
inline constexpr uint32_t kBelowFiber1 = 0x1F2;  // two bytes, a bit a port
inline constexpr uint32_t kBelowFiber2 = 0x1F4;
inline constexpr uint32_t kFiberRedundancy = 0x1F6;  // six bytes, one a group of ports

inline constexpr uint8_t kOutputOpen = 0x5A;
inline constexpr uint8_t kBypassOn = 0xA5;  // what a client writes to switch bypass on
inline constexpr uint8_t kRoleSlave = 0xA5;
inline constexpr uint8_t kNoRole = 0xFF;
inline constexpr uint8_t kRoleBackup = 0x5A;  // counts as a role at boot
inline constexpr uint8_t k3DOff = 0x28;
inline constexpr uint8_t kPortBackup = 0x80;
}  // namespace feature

// Where the values of a port stand in the feature image. Width, height and offsets are 16 bits.
struct PortPlace {
  uint16_t width;
  uint16_t height;
  uint16_t offsetX;
  uint16_t offsetY;
  uint16_t role;  // one byte: 0 master, 0x80 backup
};
inline constexpr std::array<PortPlace, 16> kPortPlaces = {{
    {0x51, 0x53, 0x55, 0x57, 0x18},
    {0x5A, 0x5C, 0x5E, 0x60, 0x19},
    {0x63, 0x65, 0x67, 0x69, 0x1A},
    {0x6C, 0x6E, 0x70, 0x72, 0x1B},
    {0xB1, 0xB3, 0xB5, 0xB7, 0x98},
    {0xBA, 0xBC, 0xBE, 0xC0, 0x99},
    {0xC3, 0xC5, 0xC7, 0xC9, 0x9A},
    {0xCC, 0xCE, 0xD0, 0xD2, 0x9B},
    {0x131, 0x133, 0x135, 0x137, 0x100},
    {0x13A, 0x13C, 0x13E, 0x140, 0x101},
    {0x143, 0x145, 0x147, 0x149, 0x102},
    {0x14C, 0x14E, 0x150, 0x152, 0x103},
    {0x155, 0x157, 0x159, 0x15B, 0x104},
    {0x15E, 0x160, 0x162, 0x164, 0x105},
    {0x167, 0x169, 0x16B, 0x16D, 0x106},
    {0x170, 0x172, 0x174, 0x176, 0x107},
}};

}  // namespace ZEPH_MCUC
