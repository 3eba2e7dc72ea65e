// The hardware basic information: model, serial number, MAC address.
#pragma once

#include "proto/registerspace.h"

namespace ZEPH_MCUC {

// A read comes from flash, with serial number and model as the environment store has them; a write
// is queued.
class Addr_HwBasicInfoRegister : public RegisterSpace<Addr_HwBasicInfoRegister, kHwBasicInfoSpace> {
 public:
  static std::span<const RowFunction> RowFunctions();
  static JSHL_Type_e REG_HwBasicInfomation(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  // -1 where flash can't be read; the bytes go out all the same.
  static JSHL_Type_e ReadHwBasicInfomation(QMB_proto3rd* msg);
  static JSHL_Type_e WriteHwBasicInfomation(QMB_proto3rd* msg);
};

}  // namespace ZEPH_MCUC
