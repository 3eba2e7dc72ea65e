// The human-computer interaction space: HDR mode, colour setting, warm-up and device communication.
#pragma once

#include "proto/registerspace.h"

namespace ZEPH_MCUC {

// Reads show what clients have set since the start, what was last applied, or what is stored; each
// field answers to its own length, any other access reads zeros. A write of a parameter queues the
// whole work that hangs on it; one of a field that isn't there is answered alike and does nothing.
// All on the bus receive thread.
class Addr_HCInteractionRegister
    : public RegisterSpace<Addr_HCInteractionRegister, kHCInteractionSpace> {
 public:
  static std::span<const RowFunction> RowFunctions();
  static JSHL_Type_e DoHCInteraction(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  static JSHL_Type_e ReadFromHCInteraction(QMB_proto3rd* msg);
  // 4 where no memory is left for the work. In HDR10 it asks a card for its brightness first.
  static JSHL_Type_e WriteToHCInteraction(QMB_proto3rd* msg);
};

}  // namespace ZEPH_MCUC
