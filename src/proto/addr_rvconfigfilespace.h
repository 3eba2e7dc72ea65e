// The space of the receiving cards' configuration files: one flat image, device names, and control.
#pragma once

#include "proto/registerspace.h"

namespace ZEPH_MCUC {

// A read comes from flash; a write is queued.
class Addr_RVConfigFileSpace : public RegisterSpace<Addr_RVConfigFileSpace, kRVConfigFileSpace> {
 public:
  static std::span<const RowFunction> RowFunctions();
  static JSHL_Type_e DoRVConfigFileSpace(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  // 4 and no data where flash can't be read.
  static JSHL_Type_e ReadFromRVConfigFileSpace(QMB_proto3rd* msg);
  static JSHL_Type_e WriteToRVConfigFileSpace(QMB_proto3rd* msg);
};

}  // namespace ZEPH_MCUC
