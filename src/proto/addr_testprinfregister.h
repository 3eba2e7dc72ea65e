// The test space: raw access to the FPGA bus, for whoever brings a board up.
#pragma once

#include "proto/registerspace.h"

namespace ZEPH_MCUC {

// The bus address is the low 28 bits of the register. Everything is done at once, on the bus
// receive thread. A write longer than 4096 bytes or past the bus gets ack 4 and writes nothing.
class Addr_TestPrinfRegister : public RegisterSpace<Addr_TestPrinfRegister, kTestPrinfSpace> {
 public:
  static std::span<const RowFunction> RowFunctions();
  static JSHL_Type_e REG_TestPrintfInfomation(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  static JSHL_Type_e ReadTestPrintfInfomation(QMB_proto3rd* msg);
  static JSHL_Type_e WriteTestPrintfInfomation(QMB_proto3rd* msg);
};

}  // namespace ZEPH_MCUC
