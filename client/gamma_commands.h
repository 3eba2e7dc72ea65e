// The commands below `gamma`, and what they share.
#pragma once

#include "colour/gammaset.h"
#include "command.h"
#include "device.h"

namespace ctl {

extern const Command kGammaUpload;
extern const Command kGammaLoad;
extern const Command kGammaShow;
extern const Command kGammaDraw;

inline constexpr std::uint32_t kGammaPiece = 1024;  // bytes of one request

// The tables that the FPGA holds.
Answer ReadGamma(Device& device, quivord::colour::GammaSet* set);

// "red and green: a power of 2.20" and the like, a line for colours that differ.
std::string GammaText(const quivord::colour::GammaSet& set);

}  // namespace ctl
