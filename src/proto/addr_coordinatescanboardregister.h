// The position space: where every card of every port lies, in pixels from its port's window.
#pragma once

#include "proto/registerspace.h"

namespace ZEPH_MCUC {

// An offset is a byte of the position tables. A read asks the FPGA and brings the tables up to
// date; a write is queued. Reads at two offsets run a speed test of the FPGA bus first.
class Addr_CoordinateScanBoardRegister
    : public RegisterSpace<Addr_CoordinateScanBoardRegister, kCoordinateScanBoardSpace> {
 public:
  static std::span<const RowFunction> RowFunctions();
  static JSHL_Type_e PositionNetPort(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  // -1 and no data where the FPGA can't be read.
  static JSHL_Type_e ReadFromPosNetPort(QMB_proto3rd* msg);
  static JSHL_Type_e WriteToPosNetPort(QMB_proto3rd* msg);
};

}  // namespace ZEPH_MCUC
