#include "proto/addr_backupinforegister.h"

#include "proto/calc_flashmap.h"

namespace ZEPH_MCUC {

std::span<const RowFunction> Addr_BackupInfoRegister::RowFunctions() {
  static constexpr RowFunction kRows[] = {DoBackupInfo};
  return kRows;
}

JSHL_Type_e Addr_BackupInfoRegister::DoBackupInfo(QMB_proto3rd* msg, Fshl_cmd* /*row*/,
                                                  int /*flag*/) {
  return space::Dispatch(msg, ReadFromBackupInfo, WriteToBackupInfo);
}

JSHL_Type_e Addr_BackupInfoRegister::ReadFromBackupInfo(QMB_proto3rd* msg) {
  return space::ReplyFromFlash(msg, BackupFlash(msg->proto.m_uiRegisterUnitAddress),
                               "=== ReadFromBackupInfo ===Read backup info flash failed. ret = ");
}

JSHL_Type_e Addr_BackupInfoRegister::WriteToBackupInfo(QMB_proto3rd* msg) {
  if (!space::FlashTakes(*msg, FlashOwner::kBackupInfo,
                         BackupFlash(msg->proto.m_uiRegisterUnitAddress), "WriteToBackupInfo")) {
    return JSHL_invalidAddrLen;
  }
  return space::QueueWrite(msg, DoBackupInfoKey, "WriteToBackupInfo");
}

}  // namespace ZEPH_MCUC
