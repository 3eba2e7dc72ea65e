// The cabinet rotation space: reserved, it holds nothing yet.
#pragma once

#include "proto/registerspace.h"

namespace ZEPH_MCUC {

// Reads answer without data, writes are accepted and dropped.
class Addr_CabinetRotationRegister
    : public RegisterSpace<Addr_CabinetRotationRegister, kCabinetRotationSpace> {
 public:
  static std::span<const RowFunction> RowFunctions();
  static JSHL_Type_e DoRotationInfo(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  static JSHL_Type_e ReadFromRotationInfo(QMB_proto3rd* msg);
  static JSHL_Type_e WriteToRotationInfo(QMB_proto3rd* msg);
};

}  // namespace ZEPH_MCUC
