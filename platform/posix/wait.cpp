#include "posix/wait.h"

#include <cerrno>
#include <ctime>

namespace posix {
namespace {

constexpr std::uint64_t kMicroseconds = 1000000;
constexpr long kNanoseconds = 1000000000;

}  // namespace

// Until a point in time, not for a span: a wait that a signal broke off goes on to the same end.
void WaitAtLeast(std::uint64_t microseconds) {
  struct timespec until {};
  clock_gettime(CLOCK_MONOTONIC, &until);
  until.tv_sec += static_cast<std::time_t>(microseconds / kMicroseconds);
  until.tv_nsec += static_cast<long>(microseconds % kMicroseconds) * 1000;
  if (until.tv_nsec >= kNanoseconds) {
    until.tv_nsec -= kNanoseconds;
    ++until.tv_sec;
  }
  while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) == EINTR) continue;
}

}  // namespace posix
