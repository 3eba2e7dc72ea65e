// The screen info echo: the screen parameters, with the size of the receiving card in them.
#pragma once

#include "proto/registerspace.h"

namespace ZEPH_MCUC {

// A read asks the card for its size first and answers from memory; a write is queued and reaches
// the first 32 bytes alone.
class Addr_ScreenInfoEchoRegister
    : public RegisterSpace<Addr_ScreenInfoEchoRegister, kScreenInfoEchoSpace> {
 public:
  static std::span<const RowFunction> RowFunctions();
  static JSHL_Type_e DoScreenInfoEcho(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  static JSHL_Type_e ReadFromScreenInfoEcho(QMB_proto3rd* msg);
  static JSHL_Type_e WriteToScreenInfoEcho(QMB_proto3rd* msg);
};

}  // namespace ZEPH_MCUC
