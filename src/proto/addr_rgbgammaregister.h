// The gamma space: clients upload the tables of the default mode here.
#pragma once

#include "proto/registerspace.h"

namespace ZEPH_MCUC {

// A read shows the table of a colour as the FPGA holds it, whichever set it came from; the values
// come from flash. What lies beside tables and values reads as zeros. A write is queued: a piece of
// a table goes to flash, and the last one of a set's blue table loads the set.
class Addr_RGBGammaRegister : public RegisterSpace<Addr_RGBGammaRegister, kRGBGammaSpace> {
 public:
  static std::span<const RowFunction> RowFunctions();
  static JSHL_Type_e DoRGBGammatable(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  // 4 and no data where FPGA or flash can't be read.
  static JSHL_Type_e ReadRGBGammatable(QMB_proto3rd* msg);
  static JSHL_Type_e WriteRGBGammatable(QMB_proto3rd* msg);
};

}  // namespace ZEPH_MCUC
