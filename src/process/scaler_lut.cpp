#include "process/scaler_lut.h"

#include <algorithm>
#include <iterator>

namespace ZEPH_MCUC {
namespace {

struct RatioRow {
  float bound;
  uint8_t filter;
};
constexpr RatioRow InLutTableA[] = {{0.5F, 7}, {0.8F, 6}, {0.85F, 5}, {1.0F, 3}, {255, 0}};
constexpr RatioRow OutLutTableA[] = {{0.2F, 0},  {0.3F, 8},   {0.4F, 9},   {0.5F, 10},
                                     {0.6F, 11}, {0.7F, 10},  {0.75F, 9},  {1.0F, 8},
                                     {1.25F, 8}, {1.75F, 9},  {2.25F, 10}, {3.0F, 11},
                                     {5.0F, 12}, {10.0F, 13}, {15.0F, 14}, {255, 15}};

struct GainRow {
  unsigned bound;  // ratio in hundredths
  uint8_t filter;
};
constexpr GainRow LutTableB[] = {
    {30, 7},  {40, 6},  {50, 5},   {60, 4},   {70, 3},   {80, 2},    {85, 1},    {100, 0},
    {125, 8}, {175, 9}, {225, 10}, {300, 11}, {500, 12}, {1000, 13}, {1500, 14}, {65535, 15}};
constexpr std::size_t kShrinkingRows = 7;  // their bounds are exclusive

constexpr float kMostGain = 1e6F;  // above all rows
constexpr double kStrongShrink = 0.8;

// The filter of the first row that `fits`; `filter` stays where none does.
template <class Rows, class Fits>
void Look(const Rows& rows, Fits fits, uint8_t* filter) {
  const auto row = std::find_if(std::begin(rows), std::end(rows), fits);
  if (row != std::end(rows)) *filter = row->filter;
}

void LookAbove(float ratio, uint8_t* filter) {
  Look(
      OutLutTableA, [=](const RatioRow& row) { return ratio <= row.bound; }, filter);
}

void LookAtGain(float ratio, uint8_t* filter) {
  const auto gain = static_cast<unsigned>(std::clamp(ratio * 100.0F, 0.0F, kMostGain));
  const auto fits = [=](const GainRow& row) {
    const bool exclusive = &row < LutTableB + kShrinkingRows;
    return exclusive ? gain < row.bound : gain <= row.bound;
  };
  Look(LutTableB, fits, filter);
}

en_lut_process_mode ProcessMode(const lut_param_t& pair) {
  if (pair.in_scaler_mode != EN_LUT_SCALER_MQ) return EN_LUT_PROCESS_ERR;
  return pair.out_scaler_mode == EN_LUT_SCALER_MQ ? EN_LUT_PROCESS_1 : EN_LUT_PROCESS_2;
}

struct Filters {
  uint8_t in = 0;
  uint8_t out = 0;
};

Filters AxisFilters(en_lut_process_mode mode, uint16_t front_in, uint16_t front_out,
                    uint16_t back_in, uint16_t back_out) {
  Filters filters;
  if (front_in == 0 || back_in == 0) return filters;
  const auto ratio = [](double out, double in) { return static_cast<float>(out / in); };
  find_lut_param(mode, ratio(front_out, front_in), ratio(back_out, back_in), &filters.in,
                 &filters.out);
  return filters;
}

}  // namespace

void find_lut_param(en_lut_process_mode lut_mode, float in_ratio, float out_ratio, uint8_t* lut_in,
                    uint8_t* lut_out) {
  const bool both = lut_mode == EN_LUT_PROCESS_1;
  if (!both && lut_mode != EN_LUT_PROCESS_2) return;
  if (in_ratio == 1.0F && out_ratio > 1.0F) {
    *lut_in = 0;
    if (both) {
      LookAbove(out_ratio, lut_out);
    } else {
      LookAtGain(out_ratio, lut_out);
    }
  } else if (in_ratio <= 1.0F && out_ratio == 1.0F) {
    if (both && in_ratio < kStrongShrink) {
      Look(
          InLutTableA, [=](const RatioRow& row) { return in_ratio < row.bound; }, lut_in);
      LookAbove(in_ratio, lut_out);
    } else {
      LookAtGain(in_ratio, lut_in);
      *lut_out = 0;
    }
  }
}

void get_scaler_lut(const lut_param_t* lut_param, uint8_t* in_lut_param, uint8_t* out_lut_param) {
  const en_lut_process_mode mode = ProcessMode(*lut_param);
  if (mode == EN_LUT_PROCESS_ERR) return;
  const Filters width =
      AxisFilters(mode, lut_param->in_scaler_in_width, lut_param->in_scaler_out_width,
                  lut_param->out_scaler_in_width, lut_param->out_scaler_out_width);
  const Filters height =
      AxisFilters(mode, lut_param->in_scaler_in_height, lut_param->in_scaler_out_height,
                  lut_param->out_scaler_in_height, lut_param->out_scaler_out_height);
  *in_lut_param = static_cast<uint8_t>(width.in + 16 * height.in);
  *out_lut_param = static_cast<uint8_t>(width.out + 16 * height.out);
}

}  // namespace ZEPH_MCUC
