// The video path's calculations: one split, one scaler pair, one timing, one EDID.
#include <benchmark/benchmark.h>
#include <platform/edid.h>

#include "process/calc_edid.h"
#include "process/calc_window.h"
#include "process/cvt.h"
#include "process/scaler.h"
#include "process/scaler_split_porting_code.h"

namespace ZEPH_MCUC {
namespace {

void SplitFrontMiddleCell(benchmark::State& state) {
  DDR_FRONT_SPLIT_PARM_IN cell{false, false, 3840, 1920, 1000, 1000, 4, 4, 1, 2, false};
  DDR_FRONT_SPLIT_PARM_OUT out{};
  for (auto _ : state) {
    benchmark::DoNotOptimize(cell);
    benchmark::DoNotOptimize(DDRFrontSplit(&cell, &out));
  }
}
BENCHMARK(SplitFrontMiddleCell);

void SplitBackMiddleCell(benchmark::State& state) {
  DDR_BACK_SPLIT_PARM_IN cell{false, false, 960, 1920, 500, 600, 1, 2, 4, false, false};
  DDR_BACK_SPLIT_PARM_OUT out{};
  for (auto _ : state) {
    benchmark::DoNotOptimize(cell);
    benchmark::DoNotOptimize(DDRBackSplit(&cell, &out));
  }
}
BENCHMARK(SplitBackMiddleCell);

// Splits, filters and both images as bytes.
void ScalerPair(benchmark::State& state) {
  scaler_pair_param_t window{
      1, 0, 0, {0, 0, 3840, 2160}, {-100, 50, 2500, 900}, {0, 0, 1920, 1080}};
  for (auto _ : state) {
    benchmark::DoNotOptimize(window);
    scaler_cal_param_t pair{};
    benchmark::DoNotOptimize(ScalerPairConfig(0, &window, &pair));
    benchmark::DoNotOptimize(kInScalerImage.Pack(pair.scaler_in));
    benchmark::DoNotOptimize(kOutScalerImage.Pack(pair.scaler_out));
  }
}
BENCHMARK(ScalerPair);

void Timing(benchmark::State& state) {
  int width = 1920;
  cvt_mode mode{};
  for (auto _ : state) {
    benchmark::DoNotOptimize(width);
    benchmark::DoNotOptimize(vert_refresh(width, 1080, 59.94F, 0, 1, 0, 0, &mode));
  }
}
BENCHMARK(Timing);

// From the library's base image to the image that a board is given; 1920 x 1080 is in the mode
// table, 1000 x 1000 is calculated.
void Edid(benchmark::State& state) {
  ModifyEDIDData_t request{};
  request.EDIDType = HDMI_4K1K;
  request.ModifyState = 14;
  request.InterfaceType = Typ_HDMI_a;
  const auto width = static_cast<uint16_t>(state.range(0));
  const auto height = static_cast<uint16_t>(state.range(1));
  for (auto _ : state) {
    EdidImage model{}, image{};
    ModifyEDID_API.Modify_EDID(request, model.data());
    benchmark::DoNotOptimize(BuildEdid(model, width, height, 5994, &image));
    benchmark::DoNotOptimize(image);
  }
}
BENCHMARK(Edid)->Args({1920, 1080})->Args({1000, 1000});

}  // namespace
}  // namespace ZEPH_MCUC
