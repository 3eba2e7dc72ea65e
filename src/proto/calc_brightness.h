// The brightness space: where a plan's fields lie, and the values that choose a plan.
//
// A plan is a table of at most `kAreaSize` bytes. Its first byte, the mode, says what the rest
// means. The first `kImageSize` bytes are also kept in memory, as the image.
#pragma once

#include <array>
#include <cstdint>

namespace ZEPH_MCUC::brightness {

inline constexpr uint32_t kBase = 0x0A000000;      // register of the table's first byte
inline constexpr uint32_t kOffsetMask = 0xFFFFFF;  // where in the table a register lies
inline constexpr uint32_t kImageSize = 0x200;
inline constexpr uint32_t kAreaSize = 0x1400;

using Image = std::array<uint8_t, kImageSize>;

// The mode bytes; any other switches all plans off.
inline constexpr uint8_t kListMode = 0x5B;      // a list of times
inline constexpr uint8_t kSensorMode = 0x7D;    // the light sensor
inline constexpr uint8_t kMixMode = 0x9A;       // times and sensor
inline constexpr uint8_t kSerialMode = 0x9B;    // an outside device; the cards are told of silence
inline constexpr uint8_t kHardwareMode = 0x9C;  // an outside device; the mix takes over in silence

// Whether the table is a file of header and sub-tables, as the mix has it.
constexpr bool IsMixFamily(uint8_t mode) {
  return mode == kMixMode || mode == kSerialMode || mode == kHardwareMode;
}

// The list of times, one column a field.
namespace list {
inline constexpr uint32_t kCount = 1;
inline constexpr uint32_t kColours = 2;  // kColoursSent where red, green and blue are sent too
inline constexpr uint32_t kHour = 0x20;
inline constexpr uint32_t kMinute = 0x40;
inline constexpr uint32_t kPorts = 0x80;
inline constexpr uint32_t kBrightness = 0xA0;
inline constexpr uint32_t kRed = 0xC0;
inline constexpr uint32_t kGreen = 0xE0;
inline constexpr uint32_t kBlue = 0x100;
inline constexpr uint32_t kVirtualRed = 0x120;
inline constexpr uint8_t kColoursSent = 0x5B;
inline constexpr uint8_t kMostNodes = 32;
inline constexpr uint8_t kPortsDriven = 4;  // ports 0 to 3 have a bit in a node's mask
}  // namespace list

// The table of the sensor mode.
namespace sensor {
inline constexpr uint32_t kCount = 1;
inline constexpr uint32_t kMostLux = 5;
inline constexpr uint32_t kLeastLux = 7;
inline constexpr uint32_t kAtMostLux = 9;
inline constexpr uint32_t kAtLeastLux = 10;
inline constexpr uint32_t kSteps = 11;
inline constexpr uint32_t kRecords = 0x20;
inline constexpr uint32_t kRecordSize = 16;
inline constexpr uint8_t kMostSensors = 8;  // also of the mix
inline constexpr uint8_t kMostSteps = 32;
}  // namespace sensor

// The header of the mix family, and the sizes of what its positions point to.
namespace mix {
inline constexpr uint32_t kFileLength = 1;
inline constexpr uint32_t kSensors = 3;
inline constexpr uint32_t kNodes = 5;
inline constexpr uint32_t kLuxMap = 7;
inline constexpr uint32_t kFallback = 10;
inline constexpr uint32_t kOn = 12;
inline constexpr uint32_t kInterval = 13;
inline constexpr uint32_t kReadings = 15;
inline constexpr uint32_t kRuns = 16;
inline constexpr uint32_t kGradual = 17;
inline constexpr uint32_t kHeaderSize = 18;

inline constexpr uint32_t kNodeSize = 16;
inline constexpr uint32_t kSensorSize = 8;
inline constexpr uint32_t kLuxItemSize = 3;
inline constexpr uint32_t kFallbackSize = 3;
inline constexpr uint8_t kMostLuxItems = 32;
inline constexpr uint8_t kMostReadings = 16;  // readings that one average can hold
}  // namespace mix

// Registers of the receiving cards.
inline constexpr uint32_t kCardBrightness = 0x02000001;
inline constexpr uint32_t kCardColours = 0x02000002;
inline constexpr uint32_t kCardScreen = 0x02000100;
inline constexpr uint8_t kScreenShown = 0;
inline constexpr uint8_t kScreenLost = 0xFF;
inline constexpr uint8_t kAllPorts = 0xFF;
inline constexpr uint16_t kAllBoards = 0xFFFF;

// Register of a multi-function card that takes a sensor request and gives its reply.
inline constexpr uint32_t kCardSensor = 0x06000000;

// A percentage on the cards' scale, 0 to 255; above 100 counts as 100.
constexpr uint8_t FromPercent(uint8_t percent) {
  return static_cast<uint8_t>(255 * (percent < 100 ? percent : 100) / 100);
}

}  // namespace ZEPH_MCUC::brightness
