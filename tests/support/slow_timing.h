// The timing formula a second time, step by step as its steps are told: every intermediate result
// goes through memory, so that nothing is fused, reordered or kept with more digits than it has.
#pragma once

#include <cmath>

#include "process/cvt.h"

namespace slow_timing {

inline float Single(double value) {
  volatile float stored = static_cast<float>(value);
  return stored;
}
inline double Double(double value) {
  volatile double stored = value;
  return stored;
}

inline float SyncLines(int h_pixels, int v_lines) {
  const int shapes[][3] = {{4, 3, 4}, {16, 9, 5}, {16, 10, 6}, {5, 4, 7}, {15, 9, 7}};
  for (const auto& shape : shapes) {
    if (h_pixels == v_lines * shape[0] / shape[1]) return static_cast<float>(shape[2]);
  }
  return 10;
}

// For inputs that have a timing.
inline ZEPH_MCUC::cvt_mode Calculate(int h_pixels, int v_lines, float freq, bool interlaced,
                                     bool reduced, bool margins, bool film) {
  const float v_sync = SyncLines(h_pixels, v_lines);
  const int lines = interlaced ? v_lines / 2 : v_lines;
  const int side = margins ? static_cast<int>(Double(Double(h_pixels * 1.8) / 100)) : 0;
  const int end = margins ? static_cast<int>(Double(lines * 0.018)) : 0;
  const float active = static_cast<float>(h_pixels + 2 * side);
  const float field = static_cast<float>(lines + 2 * end);
  const float half = interlaced ? 0.5F : 0;
  const double step = 0.001F;
  float blank = 160;
  float total_lines = 0;
  float total_pixels = active + 160;
  float clock = 0;
  if (reduced) {
    const double left_us = Double(Double(1000000.0 / freq) - 460);
    const float wanted = Single(std::floor(Double(460 / Double(left_us / field))) + 1);
    const float least = 23 + v_sync + 6;
    total_lines = (wanted > least ? wanted : least) + field + half;
    const double pixels = Double(Double(Double(freq) * total_lines) * total_pixels);
    clock = Single(step * std::floor(Double(Double(pixels / 1000000) / step)));
    if (film) clock = Single(Single(clock * 1000.0F) / 1001.0F);
  } else {
    const double left = Double(Double(1 / Double(freq)) - 0.00055);
    const float period = Single(Double(left / (field + 3 + half)) * 1000000);
    const float wanted = Single(std::floor(Double(550 / Double(period))) + 1);
    const float bp = wanted > 3 + v_sync ? wanted : 3 + v_sync;
    total_lines = field + bp + half + 3;
    const float ideal = Single(30.0F - Single(Single(period * 300.0F) / 1000.0F));
    const double duty = ideal > 20 ? ideal : 20;
    blank = Single(std::floor(Double(Double(active * duty) / (100 - duty)) / 2) * 2);
    total_pixels = active + blank;
    clock = Single(step * std::floor(Double(Double(total_pixels / Double(period)) / step)));
  }
  const int sync = reduced ? 32 : static_cast<int>(std::floor(Double(total_pixels * 0.08)));
  const int front = static_cast<int>(blank) - static_cast<int>(blank) / 2 - sync;
  ZEPH_MCUC::cvt_mode m{};
  m.hr = h_pixels;
  m.hss = m.hr + front;
  m.hse = m.hss + sync;
  m.hfl = static_cast<int>(total_pixels);
  m.vr = v_lines;
  m.vss = v_lines + (reduced ? 23 : 3);
  m.vse = m.vss + static_cast<int>(v_sync);
  m.vfl = static_cast<int>(total_lines - static_cast<float>(lines) + static_cast<float>(v_lines));
  m.pclk = clock;
  m.h_freq = Single(Single(clock * 1000.0F) / total_pixels);
  m.v_freq = freq;
  m.real_v_rate = Single(Single(m.h_freq * 1000.0F) / total_lines);
  m.rb = reduced;
  m.in_ = interlaced;
  return m;
}

}  // namespace slow_timing
