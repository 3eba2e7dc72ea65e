// Waiting, for the platforms on Linux.
#pragma once

#include <cstdint>

namespace posix {

// Waits at least so long by the monotonic clock, also when signals arrive. Any thread may call it.
void WaitAtLeast(std::uint64_t microseconds);

}  // namespace posix
