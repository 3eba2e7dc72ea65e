// Which timing a source is told for a mode, and how a detailed timing descriptor of 18 bytes (VESA
// E-EDID) says it.
//
// Pure; any thread. Rates are in units of 0.01 Hz unless a name says otherwise.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "process/cvt_modes.h"

namespace ZEPH_MCUC {

// A timing as a descriptor holds it. Blanking lies behind the active part: first the offset (front
// porch), then the sync pulse.
struct edid_CEA861DetailedTimingDescriptor {
  uint32_t PixelClock;  // Hz
  uint16_t HorizActivePixels;
  uint16_t HorizBlankingPixels;
  uint16_t VertActiveLines;
  uint16_t VertBlankingLines;
  uint16_t HorizSyncOffset;
  uint16_t HorizSyncPulseWidth;
  uint16_t VertSyncOffset;
  uint16_t VertSyncPulseWidth;
  uint16_t HorizImageSize_mm;
  uint16_t VertImageSize_mm;
  uint8_t HorizBorder;
  uint8_t VertBorder;
  bool Interlaced;
  uint8_t StereoModeDecode;
  uint8_t SyncSignalDescription;  // 3: separate sync
  uint8_t SyncSignalInfo;         // bit 0: positive horizontal sync, bit 1: vertical
  bool Native;

  uint32_t htotal() const { return uint32_t{HorizActivePixels} + HorizBlankingPixels; }
  uint32_t vtotal() const { return uint32_t{VertActiveLines} + VertBlankingLines; }
  bool operator==(const edid_CEA861DetailedTimingDescriptor&) const = default;
};
using DetailedTiming = edid_CEA861DetailedTimingDescriptor;

inline constexpr std::size_t kDescriptorSize = 18;
using Descriptor = std::array<uint8_t, kDescriptorSize>;
inline constexpr uint32_t kDescriptorClock_Hz = 10000;  // what a descriptor's clock counts

struct ChosenTiming {
  DetailedTiming timing;
  EN_MODE_TYPE mode;  // the row of the mode table; INVALID_MODE where it was calculated
};

// The timing for a mode: the mode table's, else a calculated one with reduced blanking. None for a
// size or rate that has no timing; a clock past 32 bits is 0xFFFFFFFF.
std::optional<ChosenTiming> ChooseTiming(uint16_t width, uint16_t height, uint16_t rate);

// The clock for a descriptor, in units of 10 kHz: that of the timing, moved by at most 100 steps
// towards the one with which the timing has exactly `rate`.
uint32_t TuneClock(const DetailedTiming& timing, uint16_t rate);

// The rate that so many units of 10 kHz give, modulo 65536; 0 for a timing without pixels.
uint16_t RateOf(const DetailedTiming& timing, uint32_t clock);

// Whether a descriptor holds every field of the timing at this clock as it is.
bool FitsDescriptor(const DetailedTiming& timing, uint32_t clock);

// Writes and reads a descriptor; the clock is in units of 10 kHz. What doesn't fit is cut. The
// timing that comes back has the clock in Hz.
Descriptor EncodeDescriptor(const DetailedTiming& timing, uint32_t clock);
DetailedTiming DecodeDescriptor(std::span<const uint8_t, kDescriptorSize> bytes);

}  // namespace ZEPH_MCUC
