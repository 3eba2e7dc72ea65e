// The command space: registers that are actions.
#pragma once

#include "proto/registerspace.h"

namespace ZEPH_MCUC {

// A read of any row does nothing. A write acts by its row: at once on the bus receive thread (sort,
// test point), or queued with its first byte (save, reload, mapping, factory reset). A write with
// fewer bytes than its row needs gets ack 4.
class Addr_CMDRegister : public RegisterSpace<Addr_CMDRegister, kCommandSpace> {
 public:
  static std::span<const RowFunction> RowFunctions();

  static JSHL_Type_e SortCommand(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  static JSHL_Type_e SaveSendCardParaCommand(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  static JSHL_Type_e ReturnFactorySet(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  static JSHL_Type_e TestPointCommand(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  static JSHL_Type_e ReloadSendCardProgram(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  static JSHL_Type_e ChipEraseCommand(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  static JSHL_Type_e MappingCommandAnly(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  static JSHL_Type_e DebugCommandForFPGA(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  static JSHL_Type_e ReloadrecvCard(QMB_proto3rd* msg, Fshl_cmd* row, int flag);

  static JSHL_Type_e WriteSortCommand(QMB_proto3rd* msg);
  static JSHL_Type_e WriteSaveSendCardPara(QMB_proto3rd* msg);
  // Marks the environment for a reset, tells the service daemon and queues the reset.
  static JSHL_Type_e WriteFactorySetting(QMB_proto3rd* msg);
  // Four bytes of a bus address, high byte first, and the value for it. -1 where the bus fails.
  static JSHL_Type_e WriteTestPointCommand(QMB_proto3rd* msg);
  static JSHL_Type_e WriteReloadSendCardProgram(QMB_proto3rd* msg);
  static JSHL_Type_e WriteMappingCommandAnly(QMB_proto3rd* msg);
  static JSHL_Type_e WriteReloadrecvCard(QMB_proto3rd* msg);
};

}  // namespace ZEPH_MCUC
