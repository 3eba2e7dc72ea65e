// Windows and outputs of the FPGA: parameter groups, the preview window, output timing.
//
// A group's registers are written at leisure; nothing changes on the wire until the group's bit is
// strobed. Failed bus accesses are logged by what reads back. Flag or work thread.
#pragma once

#include <cstdint>

#include "process/calc_window.h"

namespace ZEPH_MCUC {

enum en_fpga_para_updata_t : uint8_t {
  EN_BASIC_PARA = 0,
  EN_INPUT_PARA = 1,
  EN_LAYER_PARA = 2,
  EN_OUTPUT_PARA = 3,
};

// Makes what was written to the registers of a group take effect.
void FPGA_Para_Apply(en_fpga_para_updata_t type);

// Fits a source into the preview window of the given size; waits 150 ms for the FPGA. Sizes that
// can't be scaled are logged and leave the window as it was.
void PvwWindowsUpdate(Pos_T source_pos, Pos_T output_pos);

// Programs clock and timing of an output; `OutResFrame` is the rate in units of 0.01 Hz. A rate
// below 1 Hz, or a size or rate without a timing, is logged and changes nothing.
void OutputResSet(uint8_t OutputNumx, uint16_t OutResHor, uint16_t OutResVer, unsigned OutResFrame);

}  // namespace ZEPH_MCUC
