// The choice of scaling filters by ratio. Pure; any thread.
#pragma once

#include <cstdint>

namespace ZEPH_MCUC {

enum en_lut_scaler_mode : uint8_t {
  EN_LUT_SCALER_LQ = 0,
  EN_LUT_SCALER_MQ = 1,
  EN_LUT_SCALER_HQ = 2,
  EN_LUT_SCALER_ERR = 255,
};

enum en_lut_process_mode : uint8_t {
  EN_LUT_PROCESS_1 = 0,  // both scalers of medium quality
  EN_LUT_PROCESS_2 = 1,  // only the one in front of the memory
  EN_LUT_PROCESS_ERR = 255,
};

// Qualities and sizes, in pixels, of a pair of scalers.
struct _lut_param_t {
  en_lut_scaler_mode in_scaler_mode;
  en_lut_scaler_mode out_scaler_mode;
  uint16_t in_scaler_in_width;
  uint16_t in_scaler_out_width;
  uint16_t in_scaler_in_height;
  uint16_t in_scaler_out_height;
  uint16_t out_scaler_in_width;
  uint16_t out_scaler_out_width;
  uint16_t out_scaler_in_height;
  uint16_t out_scaler_out_height;
};
using lut_param_t = _lut_param_t;

// Filters of the two scalers: horizontal in the low nibble, vertical in the high one. Both stay as
// they were where the pair looks nothing up; an axis without a filter, or with an input size of 0,
// has 0.
void get_scaler_lut(const lut_param_t* lut_param, uint8_t* in_lut_param, uint8_t* out_lut_param);

// Filters of one axis by its ratios, output over input. Ratios that no rule covers leave both.
void find_lut_param(en_lut_process_mode lut_mode, float in_ratio, float out_ratio, uint8_t* lut_in,
                    uint8_t* lut_out);

}  // namespace ZEPH_MCUC
