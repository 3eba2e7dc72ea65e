// The screen pattern generator: the FPGA draws a raster of pixels or blocks over the screen.
#pragma once

#include "proto/registerspace.h"

namespace ZEPH_MCUC {

// A read shows the generator's registers as the FPGA holds them, and the image takes them over. A
// write is queued; whichever field it changes, the whole block is sent and takes effect.
class Addr_ScreenPatternGenregister
    : public RegisterSpace<Addr_ScreenPatternGenregister, kScreenPatternGenSpace> {
 public:
  static std::span<const RowFunction> RowFunctions();
  static JSHL_Type_e DoScreenPatternGen(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  // -1 and no data where the FPGA can't be read.
  static JSHL_Type_e ReadScreenPatternGenInfo(QMB_proto3rd* msg);
  static JSHL_Type_e WriteScreenPatternGenInfo(QMB_proto3rd* msg);
};

}  // namespace ZEPH_MCUC
