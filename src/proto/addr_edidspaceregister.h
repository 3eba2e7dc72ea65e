// The EDID space: the EDID that the current input shows its source, and the detection of inputs.
#pragma once

#include "proto/registerspace.h"

namespace ZEPH_MCUC {

// The current group follows from the input source ID in the feature image. A write is queued.
class Addr_EDIDSpaceRegister : public RegisterSpace<Addr_EDIDSpaceRegister, kEDIDSpace> {
 public:
  static std::span<const RowFunction> RowFunctions();
  static JSHL_Type_e DoEDIDSpace(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  // At offset 0: 128 or 256 bytes of the EDID, zeros where it can't be read; or one byte, which
  // detects the input boards and brings no data.
  static JSHL_Type_e ReadFromEDIDSpace(QMB_proto3rd* msg);
  static JSHL_Type_e WriteToEDIDSpace(QMB_proto3rd* msg);
};

}  // namespace ZEPH_MCUC
