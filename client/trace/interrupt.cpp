#include "trace/interrupt.h"

#include <atomic>
#include <csignal>

namespace quivord::trace {
namespace {

std::atomic<bool> g_interrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free);  // set from a signal handler

}  // namespace

void WatchInterrupts() {
  for (const int number : {SIGINT, SIGTERM}) std::signal(number, [](int) { g_interrupted = true; });
}

bool Interrupted() { return g_interrupted; }

}  // namespace quivord::trace
