#include "process/calc_window.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint32_t kLeastClock_Hz = 40000000;
constexpr uint16_t kGrowth = 100;     // clocks or lines
constexpr unsigned kMostSteps = 256;  // the smallest picture at 1 Hz needs half of them

uint16_t Word(int value) { return static_cast<uint16_t>(value); }

_OutputResPara ParaOf(const cvt_mode& mode) {
  const auto clocks = [](int pixels) { return Word(Word(pixels) >> 1); };
  _OutputResPara para{};
  para.HsTotal = clocks(mode.hfl);
  para.VsTotal = Word(mode.vfl);
  para.HsSynStart = clocks(mode.hse - mode.hss);
  para.VsSynStart = Word(mode.vse - mode.vss);
  para.HsDeStart = clocks(mode.hfl - mode.hss);
  para.VsDeStart = Word(mode.vfl - mode.vss);
  para.HsDeEnd = clocks(mode.hr + mode.hfl - mode.hss);
  para.VsDeEnd = Word(mode.vr + para.VsDeStart);
  return para;
}

void Grow(uint16_t* total, uint16_t* start, uint16_t* end) {
  for (uint16_t* value : {total, start, end}) *value = Word(*value + kGrowth);
}

// Lets lines and frames grow in turn until the clock is fast enough; false where it never is.
bool ReachLeastClock(uint32_t rate_Hz, _OutputResPara* para) {
  for (unsigned step = 0; step < kMostSteps; ++step) {
    if (rate_Hz * para->VsTotal * para->HsTotal >= kLeastClock_Hz) return true;
    if (step % 2 == 0) {
      Grow(&para->HsTotal, &para->HsDeStart, &para->HsDeEnd);
    } else {
      Grow(&para->VsTotal, &para->VsDeStart, &para->VsDeEnd);
    }
  }
  return false;
}

}  // namespace

scaler_pair_param_t PreviewRequest(Pos_T source_pos, Pos_T output_pos) {
  const pos_t window{0, 0, output_pos.Width, output_pos.Height};
  return {.ctrl = 1,
          .ch = 0,
          .priority = 0,
          .source_pos = {0, 0, source_pos.Width, source_pos.Height},
          .layer_pos = window,
          .output_pos = window};
}

std::optional<OutputTiming> CalculateOutput(uint16_t width, uint16_t height, unsigned rate) {
  if (rate < 100) return std::nullopt;
  cvt_mode mode;
  if (!vert_refresh(width, height, static_cast<float>(rate / 100.0), 0, 1, 0, 0, &mode)) {
    return std::nullopt;
  }
  OutputTiming timing{ParaOf(mode), 0};
  if (!ReachLeastClock(rate / 100, &timing.para)) return std::nullopt;
  timing.clock_hz = static_cast<double>(timing.para.HsTotal) * timing.para.VsTotal * (rate / 100.0);
  return timing;
}

}  // namespace ZEPH_MCUC
