// The plug-in card information: reserved, it holds nothing yet.
#pragma once

#include "proto/registerspace.h"

namespace ZEPH_MCUC {

// Reads answer without data, writes are accepted and dropped.
class Addr_PluginCardInfoRegister
    : public RegisterSpace<Addr_PluginCardInfoRegister, kPluginCardInfoSpace> {
 public:
  static std::span<const RowFunction> RowFunctions();
  static JSHL_Type_e DoPluginCardInfo(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  static JSHL_Type_e ReadFromPluginCardInfo(QMB_proto3rd* msg);
  static JSHL_Type_e WriteToPluginCardInfo(QMB_proto3rd* msg);
};

}  // namespace ZEPH_MCUC
