// The values of feature registers, and the daemon's reports, in words. Pure; safe from any thread.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "proto/feature_names.h"

namespace ZEPH_MCUC {

// The value without its unit, as a client may write it too: "128", "open", "0x20", "0 1 5",
// "2026-07-03 12:00:00", "-50,20". A byte that has no name reads as hexadecimal, and so does a time
// that doesn't exist. Empty where `bytes` are not as many as the register has.
std::string FeatureText(const FeatureRegister& row, std::span<const uint8_t> bytes);

// The number in 1 to 4 bytes, low byte first.
uint32_t FeatureNumber(std::span<const uint8_t> bytes);

// x and y of a register of offsets; both 0 where `bytes` are fewer than 8.
struct FeatureOffsets {
  int32_t x = 0;
  int32_t y = 0;
};
FeatureOffsets ReadFeatureOffsets(std::span<const uint8_t> bytes);

// The ports whose bit is set; `bytes` begin `skipped` bytes into the register.
std::vector<int> FeaturePorts(const FeatureRegister& row, std::span<const uint8_t> bytes,
                              uint32_t skipped = 0);

// What the register takes or shows: "0 to 3840 px", "closed, open", "1 byte, such as 0x20".
std::string FeatureRange(const FeatureRegister& row);

// "2026-07-03 12:00:00" from six BCD bytes; hexadecimal where they are no time.
std::string TimeText(std::span<const uint8_t> bcd);

// What a report of `data` as the value of `address` says: "port 3 is up"; empty where that isn't
// known.
std::string ReportText(uint32_t address, std::span<const uint8_t> data);

}  // namespace ZEPH_MCUC
