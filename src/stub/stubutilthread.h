// The one way in which the daemon's thread objects start their threads, and how they poll.
#pragma once

#include <pthread.h>

#include <chrono>
#include <cstdint>

namespace ZEPH_MCUC {

// Starts `body(argument)` on a detached thread. `owner` names the thread object in the log lines of
// the three things that can fail, `name` (up to 15 characters) the thread in the system's lists.
// Returns 0, or the general failure code.
int32_t StartDetachedThread(const char* owner, const char* name, void* (*body)(void*),
                            void* argument, pthread_t* thread);

// The pause of a polling loop: 100 microseconds while something came within the last second, and
// one millisecond after that, so that an idle device isn't kept awake. Used by one thread.
class PollPause {
 public:
  // Says that the poll found something; the clock is read only once nothing more is found.
  void Found() { found_ = true; }
  // Waits until the next poll is due.
  void Wait();

 private:
  bool found_ = false;
  std::chrono::steady_clock::time_point last_ = std::chrono::steady_clock::now();
};

}  // namespace ZEPH_MCUC
