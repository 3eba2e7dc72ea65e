// The mode of a device's picture and its colour setting, read and written as commands do it.
#pragma once

#include <cstdint>
#include <string>

#include "colour/scene.h"
#include "device.h"
#include "proto/calc_hc.h"

namespace ctl {

// What the daemon knows of the mode, and what the FPGA's switches say.
struct PictureMode {
  ZEPH_MCUC::hc::HDRParaData set;  // by clients since the daemon's start; `brightness` isn't read
  quivord::colour::Tables tables = quivord::colour::Tables::kUnknown;
};
Answer ReadMode(Device& device, PictureMode* mode);

// "hdr10", "hlg" or "off"; the number of any other type.
std::string ModeName(std::uint8_t type);

// Chooses `type`, which loads its tables also where it is chosen already, waits until that is done
// and looks whether the FPGA's switch follows.
Answer ChooseMode(Device& device, std::uint8_t type);

}  // namespace ctl
