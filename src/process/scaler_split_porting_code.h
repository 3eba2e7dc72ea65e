// Cutting an axis of a picture into cells that are scaled each by its own piece of hardware: which
// input a cell reads, at which phase it starts, and how many of its output pixels are only there to
// be thrown away. Both functions work on one axis, for width and height alike.
//
// Pure; any thread. Sizes and positions are pixels, steps and phases unsigned 16.16 fixed point;
// all arithmetic is unsigned with 32 bits and wraps.
#pragma once

#include <cstdint>

namespace ZEPH_MCUC {

inline constexpr unsigned kMostSplitSize = 65535;

struct DDR_FRONT_SPLIT_PARM_IN {
  bool SrcLeftBd;                  // the cell touches the left edge of the source
  bool SrcRightBd;                 // and the right edge
  unsigned SrcInHSize;             // the source in front of the scaler
  unsigned SrcOutHSize;            // and behind it
  unsigned InCellStartHPos;        // first input pixel of the cell
  unsigned InCellHSize;            // input pixels of the cell
  uint8_t SrcCutLeftExtraDataNum;  // input pixels wanted beyond the cell
  uint8_t SrcCutRightExtraDataNum;
  uint8_t ScalerCalLeftExtraDataNum;  // input pixels that the filter needs beside a sample
  uint8_t ScalerCalRightExtraDataNum;
  bool SupportMagnifyEn;  // the scaler may enlarge; without it a smaller source passes
};

struct DDR_FRONT_SPLIT_PARM_OUT {
  unsigned OutFrontScalerHStep;       // input pixels for one output pixel
  unsigned OutFrontScalerHInitPhase;  // from `OutSrcInHStartPos` on
  unsigned OutFrontScalerHInSize;     // input pixels read
  unsigned OutFrontScalerHOutSize;    // output pixels made
  unsigned OutSrcInHStartPos;         // first input pixel read
  unsigned OutSrcOutHStartPos;        // where the first output pixel lies
  uint8_t OutCellLeftExtraOutNum;     // output pixels beyond the cell, modulo 256
  uint8_t OutCellRightExtraOutNum;
};

struct DDR_BACK_SPLIT_PARM_IN {
  bool SrcLeftBd;
  bool SrcRightBd;
  unsigned SrcInHSize;
  unsigned SrcOutHSize;
  unsigned InCellOutStartHPos;  // first output pixel of the cell; not below
                                // `ScalerUnvalidDataNum` unless the cell touches the left
  unsigned InCellOutHSize;      // output pixels of the cell
  uint8_t ScalerCalLeftExtraDataNum;
  uint8_t ScalerCalRightExtraDataNum;
  uint8_t ScalerUnvalidDataNum;  // output pixels at a joining end that are thrown away
  bool SupportShrinkEn;          // without it a larger source passes
  bool MirrorEn;                 // the source is read from the right
};

struct DDR_BACK_SPLIT_PARM_OUT {
  unsigned OutBackScalerHStep;
  unsigned OutBackScalerHInitPhase;
  unsigned OutBackScalerHInSize;
  unsigned OutBackScalerHOutSize;
  unsigned OutBackInHStartPos;
  unsigned OutBackOutHStartPos;
  uint8_t OutBackOutLeftUnVldNum;  // as it was where nothing is scaled
  uint8_t OutBackOutRightUnVldNum;
};

enum TT_SPLIT_ERROR : int32_t { TT_ERROR_FRONT_IN_PARM = 0, TT_SPLIT_SUCCEED = 1 };

// Calculate a cell of the scaler in front of the frame memory, and of the one behind it. `out` is
// zeroed by the caller. TT_ERROR_FRONT_IN_PARM, and `out` as it was, for a size of 0 or above
// 65535, a target of one pixel, and a source of one pixel where its pixels would have to be told
// apart.
[[nodiscard]] TT_SPLIT_ERROR DDRFrontSplit(const DDR_FRONT_SPLIT_PARM_IN* in,
                                           DDR_FRONT_SPLIT_PARM_OUT* out);
[[nodiscard]] TT_SPLIT_ERROR DDRBackSplit(const DDR_BACK_SPLIT_PARM_IN* in,
                                          DDR_BACK_SPLIT_PARM_OUT* out);

// Kinds of scaler, by the quality of their filter.
enum en_scaler_split_type : uint8_t {
  EN_SCALER_SPLIT_TYPE_LQ = 0,
  EN_SCALER_SPLIT_TYPE_MQ_10 = 1,
  EN_SCALER_SPLIT_TYPE_MQ_15 = 2,
  EN_SCALER_SPLIT_TYPE_HQ_10 = 3,
};

// Sides on which a filter reaches beyond its sample, and what a cut needs.
enum en_scaler_split_extra_data : uint8_t {
  EN_SCALER_SPLIT_EXTRA_DATA_LEFT = 0,
  EN_SCALER_SPLIT_EXTRA_DATA_RIGHT = 1,
  EN_SCALER_SPLIT_EXTRA_DATA_UP = 2,
  EN_SCALER_SPLIT_EXTRA_DATA_DOWN = 3,
  EN_SCALER_SPLIT_EXTRA_DATA_CUT = 4,
};

// How many pixels a filter of this kind reaches; 0 for values that are in neither list.
uint8_t scaler_split_get_extra_data(en_scaler_split_type type, en_scaler_split_extra_data extra);

}  // namespace ZEPH_MCUC
