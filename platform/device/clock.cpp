// A device's clock is the system's; its waits take as long as they say.
#include <platform/system.h>

#include "posix/wait.h"

namespace platform {

void SleepMicroseconds(std::uint64_t microseconds) { posix::WaitAtLeast(microseconds); }

void KeepTime() {}

std::time_t Time() { return std::time(nullptr); }

int GetTimeOfDay(struct timeval* time, struct timezone* zone) { return gettimeofday(time, zone); }

int SetTimeOfDay(const struct timeval* time, const struct timezone* zone) {
  return settimeofday(time, zone);
}

}  // namespace platform
