// What the FPGA is told to show on an output: the preview window, and the timing of an output with
// its pixel clock.
//
// Pure; any thread.
#pragma once

#include <cstdint>
#include <optional>

#include "process/calc_registerimage.h"
#include "process/cvt.h"
#include "process/scaler.h"

namespace ZEPH_MCUC {

// A size in pixels.
struct _Pos_T {
  uint16_t Width;
  uint16_t Height;
  bool operator==(const _Pos_T&) const = default;
};
using Pos_T = _Pos_T;

// The request that fits the whole of a source into the whole of a window, whatever their shapes.
scaler_pair_param_t PreviewRequest(Pos_T source_pos, Pos_T output_pos);

// The timing of an output. Counts begin with the sync; a horizontal clock carries two pixels.
struct _OutputResPara {
  uint8_t SynPolInvert;  // 0
  uint16_t HsTotal;      // clocks of a line
  uint16_t VsTotal;      // lines of a frame
  uint16_t HsSynStart;   // clocks, lines of sync
  uint16_t VsSynStart;
  uint16_t HsDeStart;  // where the active video begins
  uint16_t VsDeStart;
  uint16_t HsDeEnd;  // and ends
  uint16_t VsDeEnd;
};

inline constexpr RegisterImage kOutputResImage{
    &_OutputResPara::SynPolInvert, &_OutputResPara::HsTotal,    &_OutputResPara::VsTotal,
    &_OutputResPara::HsSynStart,   &_OutputResPara::VsSynStart, &_OutputResPara::HsDeStart,
    &_OutputResPara::VsDeStart,    &_OutputResPara::HsDeEnd,    &_OutputResPara::VsDeEnd};
static_assert(kOutputResImage.kSize == 17);

struct OutputTiming {
  _OutputResPara para;
  double clock_hz;
};

// The timing for an output of this size at `rate`, in units of 0.01 Hz. Its blanking grows until
// the clock reaches 40 MHz. None for a rate below 1 Hz, and for a size or rate that has no timing.
std::optional<OutputTiming> CalculateOutput(uint16_t width, uint16_t height, unsigned rate);

}  // namespace ZEPH_MCUC
