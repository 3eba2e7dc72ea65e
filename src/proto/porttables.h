// The position tables and the number table: where every card of every port lies, and how many hang
// on each. The layout calculations fill them, two register spaces serve them, a save stores them.
// Several threads read and write them without a lock, byte by byte.
#pragma once

#include "mcucutil.h"
#include "proto/calc_porttables.h"

namespace ZEPH_MCUC {

inline constinit SharedBytes<kPositionSize> PortsTopoPara;
inline constinit SharedBytes<kNumberSize> NumberPartPara;

}  // namespace ZEPH_MCUC
