// The speed test of the FPGA bus that hangs off the position space.
#pragma once

#include <cstdint>

namespace ZEPH_MCUC {

enum class SpeedTest : uint8_t { kWrite, kRead };

// Moves blocks of `length` bytes (at most 16384 count) to or from the position tables in the FPGA,
// ten passes of 65535, and prints the speed of each. Writes put back what the tables hold. Holds
// the calling thread for its whole length, also where every transfer fails.
void RunSpeedTest(SpeedTest kind, uint32_t length);

}  // namespace ZEPH_MCUC
