#include "proto/addr_cabinetrotationregister.h"

namespace ZEPH_MCUC {

std::span<const RowFunction> Addr_CabinetRotationRegister::RowFunctions() {
  static constexpr RowFunction kRows[] = {DoRotationInfo};
  return kRows;
}

JSHL_Type_e Addr_CabinetRotationRegister::DoRotationInfo(QMB_proto3rd* msg, Fshl_cmd* /*row*/,
                                                         int /*flag*/) {
  return space::Dispatch(msg, ReadFromRotationInfo, WriteToRotationInfo);
}

JSHL_Type_e Addr_CabinetRotationRegister::ReadFromRotationInfo(QMB_proto3rd* /*msg*/) {
  return JSHL_OK;
}

JSHL_Type_e Addr_CabinetRotationRegister::WriteToRotationInfo(QMB_proto3rd* /*msg*/) {
  return JSHL_OK;
}

}  // namespace ZEPH_MCUC
