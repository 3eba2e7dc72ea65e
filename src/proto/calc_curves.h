// The published curves that the picture is made of, and the reference tables that follow from them.
//
// Signal and light are 0 to 1. A gamma table is what the FPGA holds for one colour: an entry of 16
// bits, low byte first, for each 12-bit input code, rising, and 65535 is all the light there is.
//
// Pure, any thread. A reference table is calculated once, at its first use.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "stub/mcucmessagestruct_layout.h"

namespace ZEPH_MCUC {

inline constexpr std::size_t kGammaEntries = 4096;
inline constexpr std::size_t kGammaTableSize = 2 * kGammaEntries;  // bytes
inline constexpr uint16_t kFullLight = 65535;

using GammaTable = std::array<uint8_t, kGammaTableSize>;

inline uint16_t GammaEntry(const GammaTable& table, std::size_t code) {
  return DWQ_DECWD(&table[2 * code]);
}
inline void SetGammaEntry(GammaTable* table, std::size_t code, uint16_t light) {
  DWQ_ENCWD(&(*table)[2 * code], light);
}

namespace curves {

// SMPTE ST 2084 (PQ), in parts of its 10000 cd/m2: the EOTF and its inverse.
inline constexpr double kPqPeak_nits = 10000;
double PqLight(double signal);
double PqSignal(double light);

// ITU-R BT.2100 HLG, also ARIB STD-B67: scene light of a signal (the OETF's inverse), and the
// exponent that makes screen light of it on a screen of `peak_nits`.
double HlgScene(double signal);
double HlgExponent(double peak_nits);

// The peak light of each HLG class, in cd/m2.
inline constexpr std::array<uint16_t, 7> kHlgPeaks_nits = {300, 450, 600, 750, 1000, 1300, 1700};
inline constexpr uint8_t kHlgLastClass = kHlgPeaks_nits.size() - 1;

// Screen light of a signal on a screen of class `hlg_class`; classes above the last count as it.
double HlgLight(double signal, uint8_t hlg_class);

}  // namespace curves

// A power curve for signals of `bits`, 1 to 12, that stand in the upper bits of an input code: each
// signal s has the light ((s + offset) / (last + offset)) ^ exponent. Exponent and offset are not
// below 0; offset 0 gives no light for no signal.
GammaTable PowerTable(double exponent, int bits, int offset = 0);

// The built-in default for all three colours.
const GammaTable& GammaTable_x();

// The ST 2084 EOTF for every input code, in units of a gamma table at 10000 cd/m2.
const std::array<float, kGammaEntries>& _PQEOTable();

// Screen light of a 10-bit signal for each HLG class, `mode` 0 to 6, in units of a gamma table.
// Above that, as for 6.
const std::array<uint16_t, 1024>& HLGTempTableMode(uint8_t mode);

}  // namespace ZEPH_MCUC
