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

// What stands beside a set of which no exponent is known, as in a new store.
inline constexpr std::uint8_t kNoExponent = 0xFF;

// The tables that the FPGA holds.
Answer ReadGamma(Device& device, quivord::colour::GammaSet* set);

// "red, green and blue: a power of 2.20", or a line a colour where they differ.
std::string GammaText(const quivord::colour::GammaSet& set);

}  // namespace ctl
