// The software space: a store for clients, in two blocks of 64 KiB.
#pragma once

#include "proto/registerspace.h"

namespace ZEPH_MCUC {

// A read comes from flash at once, a write is queued. A read of the last byte of the first block is
// a signal for the video application instead, and gives one byte 200.
class Addr_SoftwareTableRegister
    : public RegisterSpace<Addr_SoftwareTableRegister, kSoftwareTableSpace> {
 public:
  static std::span<const RowFunction> RowFunctions();
  static JSHL_Type_e DoSoftwareTable(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  // -1 and no data where flash can't be read.
  static JSHL_Type_e ReadFromSoftwareTable(QMB_proto3rd* msg);
  static JSHL_Type_e WriteToSoftwareTable(QMB_proto3rd* msg);
};

}  // namespace ZEPH_MCUC
