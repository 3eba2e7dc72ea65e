// Timing by calculation, in the manner of VESA Coordinated Video Timings but with constants of the
// device's own: a finer clock and cell, and reduced blanking with a long front porch.
//
// Pure; any thread. The results are the same to the bit on every machine: which steps are single
// and which double precision is part of the calculation.
#pragma once

namespace ZEPH_MCUC {

inline constexpr float CLOCK_STEP = 0.001F;  // MHz
inline constexpr float CELL_GRAN = 1.0F;     // pixels
inline constexpr float CELL_GRAN_RND = 1.0F;
inline constexpr float MIN_V_BPORCH = 3.0F;  // lines
inline constexpr float RB_V_FPORCH = 23.0F;

// A timing. Positions count from the first active pixel or line.
struct __mode {
  int hr;             // active pixels of a line
  int hss;            // horizontal sync begins
  int hse;            // and ends
  int hfl;            // all pixels of a line
  int vr;             // active lines
  int vss;            // vertical sync begins
  int vse;            // and ends
  int vfl;            // all lines
  float pclk;         // MHz
  float h_freq;       // kHz
  float v_freq;       // Hz, as asked for
  float real_v_rate;  // Hz, as the rounded clock gives it
  int rb;             // reduced blanking
  int in_;            // interlaced
};
using cvt_mode = __mode;

// Calculates the timing for `h_pixels` by `v_lines`, 1 to 65535 each, at `freq` Hz. The four flags
// are 0 or 1. False, and nothing in `m`, for sizes outside that range, for a rate of 0 or below,
// and for one so high that no time, or hardly any, is left for the lines.
[[nodiscard]] bool vert_refresh(int h_pixels, int v_lines, float freq, int interlaced,
                                int reduced_blank, int margins, int film_optimized, cvt_mode* m);

}  // namespace ZEPH_MCUC
