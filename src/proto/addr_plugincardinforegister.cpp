#include "proto/addr_plugincardinforegister.h"

namespace ZEPH_MCUC {

std::span<const RowFunction> Addr_PluginCardInfoRegister::RowFunctions() {
  static constexpr RowFunction kRows[] = {DoPluginCardInfo};
  return kRows;
}

JSHL_Type_e Addr_PluginCardInfoRegister::DoPluginCardInfo(QMB_proto3rd* msg, Fshl_cmd* /*row*/,
                                                          int /*flag*/) {
  return space::Dispatch(msg, ReadFromPluginCardInfo, WriteToPluginCardInfo);
}

JSHL_Type_e Addr_PluginCardInfoRegister::ReadFromPluginCardInfo(QMB_proto3rd* /*msg*/) {
  return JSHL_OK;
}

JSHL_Type_e Addr_PluginCardInfoRegister::WriteToPluginCardInfo(QMB_proto3rd* /*msg*/) {
  return JSHL_OK;
}

}  // namespace ZEPH_MCUC
