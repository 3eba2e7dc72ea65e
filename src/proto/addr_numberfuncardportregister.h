// The number space: how many cards hang on each port, and further fields of the ports.
#pragma once

#include "proto/registerspace.h"

namespace ZEPH_MCUC {

// An offset is a byte of the number table. A read brings the table up to date from the FPGA, a
// short one only the block that it lies in; a write is queued.
class Addr_NumberFunCardPortRegister
    : public RegisterSpace<Addr_NumberFunCardPortRegister, kNumberFunCardPortSpace> {
 public:
  static std::span<const RowFunction> RowFunctions();
  static JSHL_Type_e DoNumberFunCardPort(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  // 4 and no data where the FPGA can't be read.
  static JSHL_Type_e ReadFromNumberFunCardPort(QMB_proto3rd* msg);
  static JSHL_Type_e WriteToNumberFunCardPort(QMB_proto3rd* msg);
};

}  // namespace ZEPH_MCUC
