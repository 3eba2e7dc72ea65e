// The pair of scalers that brings a layer onto the screen: one in front of the frame memory that
// only shrinks, one behind it that only enlarges. Three rectangles become the register images of
// the pair, filter choice included.
//
// Pure; any thread. Positions and sizes are pixels.
#pragma once

#include <cstdint>

#include "process/calc_registerimage.h"

namespace ZEPH_MCUC {

struct _pos_t {
  int32_t x;
  int32_t y;
  int32_t width;
  int32_t height;
};
using pos_t = _pos_t;

// What is asked for.
struct _scaler_pair_param_t {
  uint8_t ctrl;      // 1 enables the pair
  uint8_t ch;        // input channel
  uint8_t priority;  // of the layer
  pos_t source_pos;  // the part of the source to show
  pos_t layer_pos;   // where it lies
  pos_t output_pos;  // the region that this FPGA drives
};
using scaler_pair_param_t = _scaler_pair_param_t;

// Steps are input pixels for an output pixel, steps and phases unsigned 16.16 fixed point.
struct _fpga_in_scaler_param_t {
  uint8_t scaler_en;
  uint32_t h_ratio;
  uint32_t v_ratio;
  uint32_t init_h_phase;
  uint32_t init_v_phase;
  uint16_t vin_h_disp;  // sizes read and made
  uint16_t vin_v_disp;
  uint16_t vout_h_disp;
  uint16_t vout_v_disp;
  uint16_t vin_start_h_pos;  // first column and line read
  uint16_t vin_start_v_pos;
  uint8_t lft_pix_unvld_num;   // 0
  uint8_t top_line_unvld_num;  // 0
  uint16_t coeff_lut;          // filter: horizontal in the low nibble, vertical in the next
  uint32_t mem_start_addr;     // in the frame memory
  uint8_t source_sel;          // input channel
};
using fpga_in_scaler_param_t = _fpga_in_scaler_param_t;

struct _fpga_out_scaler_param_t {
  uint8_t scaler_en;
  uint32_t h_ratio;
  uint32_t v_ratio;
  uint32_t init_h_phase;
  uint32_t init_v_phase;
  uint16_t vin_h_disp;
  uint16_t vin_v_disp;
  uint16_t vout_h_disp;
  uint16_t vout_v_disp;
  uint16_t vin_start_h_pos;
  uint16_t vin_start_v_pos;
  uint8_t lft_pix_unvld_num;
  uint8_t top_line_unvld_num;
  uint16_t coeff_lut;
  uint32_t mem_start_addr;
  uint16_t vout_start_h_pos;  // where the picture begins on the output
  uint16_t vout_start_v_pos;
  uint8_t priority;
};
using fpga_out_scaler_param_t = _fpga_out_scaler_param_t;

inline constexpr RegisterImage kInScalerImage{&fpga_in_scaler_param_t::scaler_en,
                                              &fpga_in_scaler_param_t::h_ratio,
                                              &fpga_in_scaler_param_t::v_ratio,
                                              &fpga_in_scaler_param_t::init_h_phase,
                                              &fpga_in_scaler_param_t::init_v_phase,
                                              &fpga_in_scaler_param_t::vin_h_disp,
                                              &fpga_in_scaler_param_t::vin_v_disp,
                                              &fpga_in_scaler_param_t::vout_h_disp,
                                              &fpga_in_scaler_param_t::vout_v_disp,
                                              &fpga_in_scaler_param_t::vin_start_h_pos,
                                              &fpga_in_scaler_param_t::vin_start_v_pos,
                                              &fpga_in_scaler_param_t::lft_pix_unvld_num,
                                              &fpga_in_scaler_param_t::top_line_unvld_num,
                                              &fpga_in_scaler_param_t::coeff_lut,
                                              &fpga_in_scaler_param_t::mem_start_addr,
                                              &fpga_in_scaler_param_t::source_sel};
static_assert(kInScalerImage.kSize == 38);

inline constexpr RegisterImage kOutScalerImage{&fpga_out_scaler_param_t::scaler_en,
                                               &fpga_out_scaler_param_t::h_ratio,
                                               &fpga_out_scaler_param_t::v_ratio,
                                               &fpga_out_scaler_param_t::init_h_phase,
                                               &fpga_out_scaler_param_t::init_v_phase,
                                               &fpga_out_scaler_param_t::vin_h_disp,
                                               &fpga_out_scaler_param_t::vin_v_disp,
                                               &fpga_out_scaler_param_t::vout_h_disp,
                                               &fpga_out_scaler_param_t::vout_v_disp,
                                               &fpga_out_scaler_param_t::vin_start_h_pos,
                                               &fpga_out_scaler_param_t::vin_start_v_pos,
                                               &fpga_out_scaler_param_t::lft_pix_unvld_num,
                                               &fpga_out_scaler_param_t::top_line_unvld_num,
                                               &fpga_out_scaler_param_t::coeff_lut,
                                               &fpga_out_scaler_param_t::mem_start_addr,
                                               &fpga_out_scaler_param_t::vout_start_h_pos,
                                               &fpga_out_scaler_param_t::vout_start_v_pos,
                                               &fpga_out_scaler_param_t::priority};
static_assert(kOutScalerImage.kSize == 42);

// Both images; zeroed by the caller, so that what no calculation fills is 0.
struct _scaler_cal_param_t {
  fpga_in_scaler_param_t scaler_in;
  fpga_out_scaler_param_t scaler_out;
};
using scaler_cal_param_t = _scaler_cal_param_t;

enum en_scaler_calc_ret : uint8_t {
  EN_RET_SUCCESS = 0,
  EN_RET_POS_ERROR = 1,    // layer and output region don't overlap
  EN_RET_ALG_ERROR = 2,    // a size that can't be scaled
  EN_RET_RATIO_ERROR = 3,  // given by nothing
  EN_RET_FAIL = 4,         // given by nothing
};

// Scalers 0 to 2 are of medium quality, 3 and above of low quality.
inline constexpr uint8_t kLowQualityScaler = 3;

// Calculates both images. True where they are valid to write, a pair that is switched off included.
// On false they are not to be written, and `reason`, where it isn't null, says why.
bool ScalerPairConfig(uint8_t scaler_num, const scaler_pair_param_t* param,
                      scaler_cal_param_t* scaler_cal_param, en_scaler_calc_ret* reason = nullptr);

// The two halves: the shrinking scaler, and the enlarging one, which takes what the first makes.
en_scaler_calc_ret _InScalerCalc(uint8_t scaler_num, uint8_t input_ch, const pos_t* source_pos,
                                 const pos_t* layer_pos, fpga_in_scaler_param_t* scaler_param);
en_scaler_calc_ret _OutScalerCalc(uint8_t scaler_num, uint8_t priority,
                                  const fpga_in_scaler_param_t* in_scaler_param,
                                  const pos_t* layer_pos, const pos_t* output_pos,
                                  fpga_out_scaler_param_t* scaler_param);

}  // namespace ZEPH_MCUC
