#include "proto/addr_cmdregister.h"

#include <platform/system.h>

#include "driverutil.h"
#include "mcuctrace.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {
namespace {

constexpr std::size_t kTestPointBytes = 5;  // four of the address, one value

JSHL_Type_e Nothing(QMB_proto3rd* /*msg*/) { return JSHL_OK; }

JSHL_Type_e Refuse(QMB_proto3rd* msg) {
  msg->proto.m_ucAck = JSHL_invalidCMD;
  return JSHL_invalidCMD;
}

// Queues the request's first byte.
JSHL_Type_e QueueFirstByte(QMB_proto3rd* msg, _ValueChanged_Table key) {
  if (msg->proto.m_data.empty()) return Refuse(msg);
  return space::QueueRecord(*msg, key, {msg->proto.m_data.data(), 1});
}

}  // namespace

// In the order of the rows.
std::span<const RowFunction> Addr_CMDRegister::RowFunctions() {
  static constexpr RowFunction kRows[] = {
      SortCommand,        SaveSendCardParaCommand, ReturnFactorySet,
      TestPointCommand,   ReloadSendCardProgram,   ChipEraseCommand,
      MappingCommandAnly, DebugCommandForFPGA,     ReloadrecvCard,
  };
  return kRows;
}

JSHL_Type_e Addr_CMDRegister::SortCommand(QMB_proto3rd* msg, Fshl_cmd*, int) {
  return space::Dispatch(msg, Nothing, WriteSortCommand);
}

JSHL_Type_e Addr_CMDRegister::SaveSendCardParaCommand(QMB_proto3rd* msg, Fshl_cmd*, int) {
  return space::Dispatch(msg, Nothing, WriteSaveSendCardPara);
}

JSHL_Type_e Addr_CMDRegister::ReturnFactorySet(QMB_proto3rd* msg, Fshl_cmd*, int) {
  return space::Dispatch(msg, Nothing, WriteFactorySetting);
}

JSHL_Type_e Addr_CMDRegister::TestPointCommand(QMB_proto3rd* msg, Fshl_cmd*, int) {
  return space::Dispatch(msg, Nothing, WriteTestPointCommand);
}

JSHL_Type_e Addr_CMDRegister::ReloadSendCardProgram(QMB_proto3rd* msg, Fshl_cmd*, int) {
  return space::Dispatch(msg, Nothing, WriteReloadSendCardProgram);
}

JSHL_Type_e Addr_CMDRegister::ChipEraseCommand(QMB_proto3rd* msg, Fshl_cmd*, int) {
  return space::Dispatch(msg, Nothing, Nothing);
}

JSHL_Type_e Addr_CMDRegister::MappingCommandAnly(QMB_proto3rd* msg, Fshl_cmd*, int) {
  return space::Dispatch(msg, Nothing, WriteMappingCommandAnly);
}

JSHL_Type_e Addr_CMDRegister::DebugCommandForFPGA(QMB_proto3rd* msg, Fshl_cmd*, int) {
  return space::Dispatch(msg, Nothing, Nothing);
}

JSHL_Type_e Addr_CMDRegister::ReloadrecvCard(QMB_proto3rd* msg, Fshl_cmd*, int) {
  return space::Dispatch(msg, Nothing, WriteReloadrecvCard);
}

JSHL_Type_e Addr_CMDRegister::WriteSortCommand(QMB_proto3rd* msg) {
  if (msg->proto.m_data.empty()) return Refuse(msg);
  Data_Global::getInstance()->LocalAddr = msg->proto.m_data[0];
  return JSHL_OK;
}

JSHL_Type_e Addr_CMDRegister::WriteSaveSendCardPara(QMB_proto3rd* msg) {
  return QueueFirstByte(msg, SaveSendCardParaKey);
}

JSHL_Type_e Addr_CMDRegister::WriteFactorySetting(QMB_proto3rd* msg) {
  constexpr const char* kCommands[] = {"envcfg set factory_enable 1", "envcfg set returnfactory 1",
                                       "envcfg set firstboot 1", "killall moirad"};
  if (msg->proto.m_data.empty()) return Refuse(msg);
  for (const char* command : kCommands) platform::RunShell(command);
  const uint8_t type = msg->proto.m_data[0];
  Data_Global::getInstance()->SendRebootMsgtoOWD(&type, 1);
  return QueueFirstByte(msg, ReturnFactorySetKey);
}

JSHL_Type_e Addr_CMDRegister::WriteTestPointCommand(QMB_proto3rd* msg) {
  const auto& data = msg->proto.m_data;
  if (data.size() < kTestPointBytes) return Refuse(msg);
  const uint32_t address = DWQ_MAKEDW(data[0], data[1], data[2], data[3]);
  const int32_t result = DriverUtil::getInstance()->FPGAC5_WriteOneWord(0, 0, address, data[4]);
  if (result >= 0) return JSHL_OK;
  MCUC_LOG(kLogError,
           "=== WriteTestPointCommand ===write to page program failed. driverRet = " << result);
  return JSHL_TYPE_NG;
}

JSHL_Type_e Addr_CMDRegister::WriteReloadSendCardProgram(QMB_proto3rd* msg) {
  return QueueFirstByte(msg, ReloadSenderFPGAKey);
}

JSHL_Type_e Addr_CMDRegister::WriteMappingCommandAnly(QMB_proto3rd* msg) {
  return QueueFirstByte(msg, SendCardMappingKey);
}

JSHL_Type_e Addr_CMDRegister::WriteReloadrecvCard(QMB_proto3rd* msg) {
  return QueueFirstByte(msg, SaveSendCardParaKey);
}

}  // namespace ZEPH_MCUC
