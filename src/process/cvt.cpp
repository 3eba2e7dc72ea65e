#include "process/cvt.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <optional>

namespace ZEPH_MCUC {
namespace {

static_assert(FLT_EVAL_METHOD == 0, "floats must be evaluated as floats: see src/CMakeLists.txt");

constexpr int kMostSize = 65535;
constexpr float kMostLines = 1 << 24;  // beyond this a float no longer counts every line
constexpr float kCustomSync = 10;
constexpr float kFrontPorch = 3;      // lines, without reduced blanking
constexpr float kReducedBlank = 160;  // pixels
constexpr float kReducedSync = 32;
constexpr float kReducedBackPorch = 6;  // lines
constexpr double kReducedBlankTime_us = 460;
constexpr double kSyncAndBackPorch_us = 550;

struct Aspect {
  double width;
  double height;
  float v_sync;
};
constexpr Aspect kAspects[] = {{4, 3, 4}, {16, 9, 5}, {16, 10, 6}, {5, 4, 7}, {15, 9, 7}};

// The picture that a timing is built around.
struct Picture {
  float pixels;     // of a line, with margins
  float lines;      // of a field, with margins
  float interlace;  // half a line where there are two fields
  float v_sync;
  float freq;
};

struct Blanking {
  float h_blank;
  float total_v_lines;
  float total_pixels;
  float act_pixel_freq;
};

float WholeCells(double pixels) {
  return static_cast<float>(std::floor(pixels / CELL_GRAN_RND) * CELL_GRAN_RND);
}

float SyncLines(float h_pixels, int v_lines) {
  for (const Aspect& aspect : kAspects) {
    if (h_pixels == WholeCells(v_lines * aspect.width / aspect.height)) return aspect.v_sync;
  }
  return kCustomSync;
}

Picture PictureOf(float h_pixels, int v_lines, float freq, bool interlaced, bool margins) {
  const auto lines = static_cast<float>(std::floor(interlaced ? v_lines / 2.0 : v_lines));
  const float sides = margins ? WholeCells(h_pixels * 1.8 / 100) : 0;
  const float ends = margins ? static_cast<float>(std::floor(lines * 0.018)) : 0;
  return {.pixels = h_pixels + sides + sides,
          .lines = lines + ends + ends,
          .interlace = interlaced ? 0.5F : 0,
          .v_sync = SyncLines(h_pixels, v_lines),
          .freq = freq};
}

float WholeSteps(double megahertz) {
  return static_cast<float>(CLOCK_STEP * std::floor(megahertz / CLOCK_STEP));
}

std::optional<Blanking> FullBlanking(const Picture& picture) {
  const double lines = picture.lines + kFrontPorch + picture.interlace;
  const double period_us = (1.0 / picture.freq - 0.00055) / lines * 1000000.0;
  if (!(period_us > 0 && period_us < FLT_MAX)) return std::nullopt;
  const auto h_period_est = static_cast<float>(period_us);
  const auto wanted = static_cast<float>(std::floor(kSyncAndBackPorch_us / h_period_est) + 1);
  const float v_sync_bp = std::max(wanted, MIN_V_BPORCH + picture.v_sync);
  const float ideal_duty_cycle = std::max(30.0F - h_period_est * 300.0F / 1000.0F, 20.0F);
  const double duty = ideal_duty_cycle;
  const double pair = 2.0 * CELL_GRAN_RND;
  Blanking blanking{};
  blanking.h_blank =
      static_cast<float>(std::floor(picture.pixels * duty / (100 - duty) / pair) * pair);
  blanking.total_v_lines = picture.lines + v_sync_bp + picture.interlace + kFrontPorch;
  blanking.total_pixels = picture.pixels + blanking.h_blank;
  blanking.act_pixel_freq = WholeSteps(static_cast<double>(blanking.total_pixels) / h_period_est);
  return blanking;
}

std::optional<Blanking> ReducedBlanking(const Picture& picture, bool film_optimized) {
  const double active_time_us = 1000000.0 / picture.freq - kReducedBlankTime_us;
  if (!(active_time_us > 0 && picture.lines > 0)) return std::nullopt;
  const auto vbi_lines =
      static_cast<float>(std::floor(kReducedBlankTime_us / (active_time_us / picture.lines)) + 1);
  const float rb_min_vbi = RB_V_FPORCH + picture.v_sync + kReducedBackPorch;
  Blanking blanking{};
  blanking.h_blank = kReducedBlank;
  blanking.total_v_lines = std::max(vbi_lines, rb_min_vbi) + picture.lines + picture.interlace;
  blanking.total_pixels = picture.pixels + kReducedBlank;
  blanking.act_pixel_freq = WholeSteps(static_cast<double>(picture.freq) * blanking.total_v_lines *
                                       blanking.total_pixels / 1000000.0);
  if (film_optimized) blanking.act_pixel_freq = blanking.act_pixel_freq * 1000.0F / 1001.0F;
  return blanking;
}

// Pixels and lines of `mode`, once `hr` and `vr` stand in it.
void PlaceSyncs(const Picture& picture, const Blanking& blanking, float field_lines,
                cvt_mode* mode) {
  const bool reduced = mode->rb != 0;
  const float h_sync = reduced ? kReducedSync : WholeCells(blanking.total_pixels * 0.08);
  const float h_front_porch = blanking.h_blank - blanking.h_blank / 2 - h_sync;
  const float v_front_porch = reduced ? RB_V_FPORCH : kFrontPorch;
  const auto v_lines = static_cast<float>(mode->vr);
  mode->hss = static_cast<int>(static_cast<float>(mode->hr) + h_front_porch);
  mode->hse = static_cast<int>(static_cast<float>(mode->hss) + h_sync);
  mode->hfl = static_cast<int>(blanking.total_pixels);
  mode->vss = static_cast<int>(v_lines + v_front_porch);
  mode->vse = static_cast<int>(static_cast<float>(mode->vss) + picture.v_sync);
  mode->vfl = static_cast<int>(blanking.total_v_lines - field_lines + v_lines);
}

bool Possible(int h_pixels, int v_lines, float freq) {
  const auto holds = [](int size) { return size >= 1 && size <= kMostSize; };
  return holds(h_pixels) && holds(v_lines) && freq > 0;  // no number is not above 0 either
}

}  // namespace

bool vert_refresh(int h_pixels, int v_lines, float freq, int interlaced, int reduced_blank,
                  int margins, int film_optimized, cvt_mode* m) {
  if (!Possible(h_pixels, v_lines, freq)) return false;
  const float h_pixels_rnd = WholeCells(h_pixels);
  const Picture picture = PictureOf(h_pixels_rnd, v_lines, freq, interlaced != 0, margins != 0);
  const auto blanking =
      reduced_blank != 0 ? ReducedBlanking(picture, film_optimized == 1) : FullBlanking(picture);
  if (!blanking || !(blanking->total_v_lines < kMostLines)) return false;
  cvt_mode mode{};
  mode.hr = static_cast<int>(h_pixels_rnd);
  mode.vr = v_lines;
  mode.rb = reduced_blank;
  mode.in_ = interlaced;
  const auto field_lines = static_cast<float>(interlaced != 0 ? v_lines / 2 : v_lines);
  PlaceSyncs(picture, *blanking, field_lines, &mode);
  mode.pclk = blanking->act_pixel_freq;
  mode.h_freq = mode.pclk * 1000.0F / blanking->total_pixels;
  mode.v_freq = freq;
  mode.real_v_rate = mode.h_freq * 1000.0F / blanking->total_v_lines;
  *m = mode;
  return true;
}

}  // namespace ZEPH_MCUC
