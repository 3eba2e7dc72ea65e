// What the daemon sends unasked, besides feature registers whose value changed. Pure.
#pragma once

#include <cstdint>
#include <span>

namespace ZEPH_MCUC {

namespace report {
inline constexpr uint32_t kReady = 0x14000000;
inline constexpr uint32_t kReset = 0x01000002;
inline constexpr uint32_t kCardMapping = 0x01000088;
inline constexpr uint32_t kCardBrightness = 0x02000001;
inline constexpr uint32_t kCardSize = 0x02100006;
inline constexpr uint32_t kShortcut = 0x02810000;
inline constexpr uint32_t kBandwidth = 0x02810008;
inline constexpr uint32_t kTime = 0x13000300;
}  // namespace report

// What the data of a report hold.
enum class ReportForm : uint8_t {
  kMark,    // nothing beyond the report itself
  kNumber,  // a byte
  kSize,    // width and height, 16 bits each, in pixels
};

struct ReportName {
  uint32_t address;
  uint32_t length;
  ReportForm form;
  const char* meaning;
};

std::span<const ReportName> ReportNames();

}  // namespace ZEPH_MCUC
