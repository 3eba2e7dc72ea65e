// How the gateway tries a transfer again.
#pragma once

#include <platform/system.h>

#include <cstdint>

namespace ZEPH_MCUC {

// Calls `access` until it gives 0, three times at most, with 100 microseconds after each failure.
// What the last call gave.
template <class Access>
int32_t TryThreeTimes(Access access) {
  constexpr int kAttempts = 3;
  constexpr uint64_t kAfterFailure_us = 100;
  int32_t result = 0;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    result = access();
    if (result == 0) return 0;
    platform::SleepMicroseconds(kAfterFailure_us);
  }
  return result;
}

}  // namespace ZEPH_MCUC
