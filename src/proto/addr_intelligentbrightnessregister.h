// The space through which a screen-mounted controller sets the brightness of chosen ports.
#pragma once

#include "proto/registerspace.h"

namespace ZEPH_MCUC {

// Reads are answered without data; a write is done at once, with a pause after each port. A plan
// that runs sets its own brightness at its next step, and nobody is told of this one. Bus receive
// thread.
class Addr_IntelligentBrightnessRegister
    : public RegisterSpace<Addr_IntelligentBrightnessRegister, kIntelligentBrightnessSpace> {
 public:
  static std::span<const RowFunction> RowFunctions();
  static JSHL_Type_e DoIntellBrightSentByScreen(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  static JSHL_Type_e ReadFromIntellBrightSentByScreen(QMB_proto3rd* msg);
  // Acts at offset 0 on more than 3 bytes; anything else is answered alike and does nothing.
  static JSHL_Type_e WriteToIntellBrightSentByScreen(QMB_proto3rd* msg);

  // Sends a brightness to all cards of one port on the FPGA's own road. 0, or -1 where the packet
  // couldn't be sent off.
  static int32_t AdjustCurrentGlobalBrightness(uint8_t portAddress, uint8_t globalBrightness);
};

}  // namespace ZEPH_MCUC
