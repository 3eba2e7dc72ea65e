// The backup information: a small store for clients.
#pragma once

#include "proto/registerspace.h"

namespace ZEPH_MCUC {

// A read comes from flash at once, a write is queued and followed by "sync".
class Addr_BackupInfoRegister : public RegisterSpace<Addr_BackupInfoRegister, kBackupInfoSpace> {
 public:
  static std::span<const RowFunction> RowFunctions();
  static JSHL_Type_e DoBackupInfo(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  // -1 and no data where flash can't be read.
  static JSHL_Type_e ReadFromBackupInfo(QMB_proto3rd* msg);
  static JSHL_Type_e WriteToBackupInfo(QMB_proto3rd* msg);
};

}  // namespace ZEPH_MCUC
