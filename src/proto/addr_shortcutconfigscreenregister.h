// The shortcut space: a whole wall laid out by a few numbers, or port by port.
#pragma once

#include "proto/registerspace.h"

namespace ZEPH_MCUC {

// An offset is a byte of the record in flash. A write is stored at once, on the bus receive thread;
// what it asks for is queued: a smart configuration where it begins in the record's trigger range,
// an advanced one where it submits.
class Addr_ShortcutConfigScreenRegister
    : public RegisterSpace<Addr_ShortcutConfigScreenRegister, kShortcutConfigScreenSpace> {
 public:
  static std::span<const RowFunction> RowFunctions();
  static JSHL_Type_e DoShortcutConfigScreen(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  // -1 and no data where flash can't be read; the compact read goes out all the same.
  static JSHL_Type_e ReadFromShortcutConfigScreen(QMB_proto3rd* msg);
  // 4 where flash can't be written or the wall has no rows, columns or cabinets on a cable.
  static JSHL_Type_e WriteToShortcutConfigScreen(QMB_proto3rd* msg);
};

}  // namespace ZEPH_MCUC
