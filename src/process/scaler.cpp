#include "process/scaler.h"

#include <cstddef>
#include <span>

#include "process/scaler_lut.h"
#include "process/scaler_split_porting_code.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint32_t kLowQualityMemory = 0x07C00000;
constexpr unsigned kMemoryOfScaler = 24;  // bits

// Where the values of one axis stand in an image.
template <class Image>
struct Fields {
  uint32_t Image::*ratio;
  uint32_t Image::*phase;
  uint16_t Image::*in_size;
  uint16_t Image::*out_size;
  uint16_t Image::*in_start;
};

template <class Image>
constexpr Fields<Image> kColumnsOf{&Image::h_ratio, &Image::init_h_phase, &Image::vin_h_disp,
                                   &Image::vout_h_disp, &Image::vin_start_h_pos};
template <class Image>
constexpr Fields<Image> kLinesOf{&Image::v_ratio, &Image::init_v_phase, &Image::vin_v_disp,
                                 &Image::vout_v_disp, &Image::vin_start_v_pos};

struct Reach {
  uint8_t before;
  uint8_t after;
};

en_scaler_split_type SplitType(uint8_t scaler_num) {
  return scaler_num < kLowQualityScaler ? EN_SCALER_SPLIT_TYPE_MQ_10 : EN_SCALER_SPLIT_TYPE_LQ;
}

Reach ColumnReach(uint8_t scaler_num) {
  const auto type = SplitType(scaler_num);
  return {scaler_split_get_extra_data(type, EN_SCALER_SPLIT_EXTRA_DATA_LEFT),
          scaler_split_get_extra_data(type, EN_SCALER_SPLIT_EXTRA_DATA_RIGHT)};
}

Reach LineReach(uint8_t scaler_num) {
  const auto type = SplitType(scaler_num);
  return {scaler_split_get_extra_data(type, EN_SCALER_SPLIT_EXTRA_DATA_UP),
          scaler_split_get_extra_data(type, EN_SCALER_SPLIT_EXTRA_DATA_DOWN)};
}

// One axis of the shrinking scaler; false where it can't be scaled, and nothing is stored.
bool Shrink(int32_t start, int32_t source, int32_t layer, Reach reach,
            const Fields<fpga_in_scaler_param_t>& fields, fpga_in_scaler_param_t* image) {
  const DDR_FRONT_SPLIT_PARM_IN request{.SrcLeftBd = true,
                                        .SrcRightBd = true,
                                        .SrcInHSize = static_cast<unsigned>(source),
                                        .SrcOutHSize = static_cast<unsigned>(layer),
                                        .InCellStartHPos = 0,
                                        .InCellHSize = static_cast<unsigned>(source),
                                        .SrcCutLeftExtraDataNum = 0,
                                        .SrcCutRightExtraDataNum = 0,
                                        .ScalerCalLeftExtraDataNum = reach.before,
                                        .ScalerCalRightExtraDataNum = reach.after,
                                        .SupportMagnifyEn = false};
  DDR_FRONT_SPLIT_PARM_OUT split{};
  if (DDRFrontSplit(&request, &split) != TT_SPLIT_SUCCEED) return false;
  image->*fields.ratio = split.OutFrontScalerHStep;
  image->*fields.phase = split.OutFrontScalerHInitPhase;
  image->*fields.in_size = static_cast<uint16_t>(split.OutFrontScalerHInSize);
  image->*fields.out_size = static_cast<uint16_t>(split.OutFrontScalerHOutSize);
  image->*fields.in_start = static_cast<uint16_t>(start);
  return true;
}

// One axis of a layer, cut by an output region into what lies in front of it, inside, and behind.
struct Cut {
  int64_t spans[3] = {};
  std::size_t count = 0;
  std::size_t inside = 0;  // which of the spans
  int64_t out_start = 0;   // where the layer begins in the region
  bool reached = false;    // the region doesn't end in front of the layer

  void Append(int64_t span) { spans[count++] = span; }
};

Cut CutLayer(int64_t layer, int64_t layer_size, int64_t region, int64_t region_size) {
  const int64_t layer_end = layer + layer_size - 1;
  const int64_t region_end = region + region_size - 1;
  Cut cut;
  if (region > layer_end && region > layer) return cut;
  if (region > layer) {
    cut.Append(region - layer);
    cut.inside = 1;
  } else {
    cut.out_start = layer - region;
  }
  cut.reached = region_end >= layer;
  if (!cut.reached) return cut;
  const bool begins_inside = cut.count == 0;
  if (layer_end < region_end) {
    cut.Append(begins_inside ? layer_size : layer + layer_size - region);
    return cut;
  }
  cut.Append(begins_inside ? region_end - layer + 1 : region_size);
  if (region_end != layer_end) cut.Append(layer_size - cut.spans[0] - cut.spans[1]);
  return cut;
}

// One axis of the enlarging scaler; false where it can't be scaled, and nothing is stored.
bool Enlarge(const Cut& cut, uint16_t source, int32_t layer, Reach reach,
             const Fields<fpga_out_scaler_param_t>& fields, fpga_out_scaler_param_t* image) {
  const DDR_BACK_SPLIT_PARM_IN request{
      .SrcLeftBd = cut.inside == 0,
      .SrcRightBd = cut.count == cut.inside + 1,
      .SrcInHSize = source,
      .SrcOutHSize = static_cast<unsigned>(layer),
      .InCellOutStartHPos = cut.inside == 0 ? 0 : static_cast<unsigned>(cut.spans[0]),
      .InCellOutHSize = static_cast<unsigned>(cut.spans[cut.inside]),
      .ScalerCalLeftExtraDataNum = reach.before,
      .ScalerCalRightExtraDataNum = reach.after,
      .ScalerUnvalidDataNum = 0,
      .SupportShrinkEn = false,
      .MirrorEn = false};
  DDR_BACK_SPLIT_PARM_OUT split{};
  if (DDRBackSplit(&request, &split) != TT_SPLIT_SUCCEED) return false;
  image->*fields.ratio = split.OutBackScalerHStep;
  image->*fields.phase = split.OutBackScalerHInitPhase;
  image->*fields.in_size = static_cast<uint16_t>(split.OutBackScalerHInSize);
  image->*fields.out_size = static_cast<uint16_t>(split.OutBackScalerHOutSize);
  image->*fields.in_start = static_cast<uint16_t>(split.OutBackInHStartPos);
  return true;
}

void ChooseFilters(uint8_t scaler_num, scaler_cal_param_t* pair) {
  const auto mode = scaler_num < kLowQualityScaler ? EN_LUT_SCALER_MQ : EN_LUT_SCALER_LQ;
  const lut_param_t sizes{.in_scaler_mode = mode,
                          .out_scaler_mode = mode,
                          .in_scaler_in_width = pair->scaler_in.vin_h_disp,
                          .in_scaler_out_width = pair->scaler_in.vout_h_disp,
                          .in_scaler_in_height = pair->scaler_in.vin_v_disp,
                          .in_scaler_out_height = pair->scaler_in.vout_v_disp,
                          .out_scaler_in_width = pair->scaler_out.vin_h_disp,
                          .out_scaler_out_width = pair->scaler_out.vout_h_disp,
                          .out_scaler_in_height = pair->scaler_out.vin_v_disp,
                          .out_scaler_out_height = pair->scaler_out.vout_v_disp};
  uint8_t in_filters = 0;
  uint8_t out_filters = 0;
  get_scaler_lut(&sizes, &in_filters, &out_filters);
  pair->scaler_in.coeff_lut = in_filters;
  pair->scaler_out.coeff_lut = out_filters;
}

void SwitchOff(const scaler_pair_param_t& param, scaler_cal_param_t* pair) {
  pair->scaler_in.scaler_en = 0;
  pair->scaler_in.source_sel = param.ch;
  pair->scaler_out.scaler_en = 0;
  pair->scaler_out.priority = param.priority;
}

en_scaler_calc_ret Calculate(uint8_t scaler_num, const scaler_pair_param_t& param,
                             scaler_cal_param_t* pair) {
  if (param.ctrl != 1) {
    SwitchOff(param, pair);
    return EN_RET_SUCCESS;
  }
  auto result =
      _InScalerCalc(scaler_num, param.ch, &param.source_pos, &param.layer_pos, &pair->scaler_in);
  if (result != EN_RET_SUCCESS) return result;
  result = _OutScalerCalc(scaler_num, param.priority, &pair->scaler_in, &param.layer_pos,
                          &param.output_pos, &pair->scaler_out);
  if (result == EN_RET_POS_ERROR) SwitchOff(param, pair);
  if (result != EN_RET_SUCCESS) return result;
  const uint32_t memory = scaler_num == kLowQualityScaler
                              ? kLowQualityMemory
                              : static_cast<uint32_t>(scaler_num) << kMemoryOfScaler;
  pair->scaler_in.mem_start_addr = memory;
  pair->scaler_out.mem_start_addr = memory;
  ChooseFilters(scaler_num, pair);
  return EN_RET_SUCCESS;
}

}  // namespace

bool ScalerPairConfig(uint8_t scaler_num, const scaler_pair_param_t* param,
                      scaler_cal_param_t* scaler_cal_param, en_scaler_calc_ret* reason) {
  const en_scaler_calc_ret result = Calculate(scaler_num, *param, scaler_cal_param);
  if (reason != nullptr) *reason = result;
  return result == EN_RET_SUCCESS;
}

en_scaler_calc_ret _InScalerCalc(uint8_t scaler_num, uint8_t input_ch, const pos_t* source_pos,
                                 const pos_t* layer_pos, fpga_in_scaler_param_t* scaler_param) {
  using Image = fpga_in_scaler_param_t;
  const bool columns = Shrink(source_pos->x, source_pos->width, layer_pos->width,
                              ColumnReach(scaler_num), kColumnsOf<Image>, scaler_param);
  const bool lines = Shrink(source_pos->y, source_pos->height, layer_pos->height,
                            LineReach(scaler_num), kLinesOf<Image>, scaler_param);
  scaler_param->scaler_en = columns && lines ? 1 : 0;
  scaler_param->source_sel = input_ch;
  return columns && lines ? EN_RET_SUCCESS : EN_RET_ALG_ERROR;
}

en_scaler_calc_ret _OutScalerCalc(uint8_t scaler_num, uint8_t priority,
                                  const fpga_in_scaler_param_t* in_scaler_param,
                                  const pos_t* layer_pos, const pos_t* output_pos,
                                  fpga_out_scaler_param_t* scaler_param) {
  using Image = fpga_out_scaler_param_t;
  const Cut x = CutLayer(layer_pos->x, layer_pos->width, output_pos->x, output_pos->width);
  const Cut y = CutLayer(layer_pos->y, layer_pos->height, output_pos->y, output_pos->height);
  if (!x.reached || !y.reached) return EN_RET_POS_ERROR;
  const bool columns = Enlarge(x, in_scaler_param->vout_h_disp, layer_pos->width,
                               ColumnReach(scaler_num), kColumnsOf<Image>, scaler_param);
  if (columns) scaler_param->vout_start_h_pos = static_cast<uint16_t>(x.out_start);
  const bool lines = Enlarge(y, in_scaler_param->vout_v_disp, layer_pos->height,
                             LineReach(scaler_num), kLinesOf<Image>, scaler_param);
  if (lines) scaler_param->vout_start_v_pos = static_cast<uint16_t>(y.out_start);
  scaler_param->scaler_en = columns && lines ? 1 : 0;
  scaler_param->priority = priority;
  return columns && lines ? EN_RET_SUCCESS : EN_RET_ALG_ERROR;
}

}  // namespace ZEPH_MCUC
