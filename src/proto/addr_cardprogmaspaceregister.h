// The card program space: programs are not written through this daemon.
#pragma once

#include "proto/registerspace.h"

namespace ZEPH_MCUC {

// A read gives zeros, a write is refused with ack 4.
class Addr_CardProgmaSpaceRegister
    : public RegisterSpace<Addr_CardProgmaSpaceRegister, kCardProgmaSpace> {
 public:
  static std::span<const RowFunction> RowFunctions();
  static JSHL_Type_e ProcessCardProgmaSpace(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  static JSHL_Type_e ReadCardProgmaSpace(QMB_proto3rd* msg);
};

}  // namespace ZEPH_MCUC
