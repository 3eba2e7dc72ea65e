#include "stub/stubutilthread.h"

#include <platform/system.h>

#include <cerrno>
#include <utility>

#include "mcuctrace.h"
#include "stub/mcucmessagestruct.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint64_t kBusyPause_us = 100;
// A look for work, shorter than the waits that a fast board makes shorter still.
constexpr uint64_t kIdlePause_us = 990;
constexpr auto kBusyFor = std::chrono::seconds(1);

int32_t Failed(const char* owner, const char* call, const char* what, int code) {
  MCUC_LOG(kLogError,
           "=== ===" << owner << ": CreateThread() " << call << " failed! " << what << code);
  return kGeneralFailure;
}

}  // namespace

int32_t StartDetachedThread(const char* owner, const char* name, void* (*body)(void*),
                            void* argument, pthread_t* thread) {
  pthread_attr_t attributes;
  if (pthread_attr_init(&attributes) != 0) {
    return Failed(owner, "pthread_attr_init()", "errno=", errno);
  }
  int32_t result = 0;
  if (int code = pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED); code != 0) {
    result = Failed(owner, "pthread_attr_setdetachstate()", "err=", code);
  } else if (code = pthread_create(thread, &attributes, body, argument); code != 0) {
    result = Failed(owner, "pthread_create()", "err=", code);
  } else {
    pthread_setname_np(*thread, name);
  }
  pthread_attr_destroy(&attributes);
  return result;
}

void PollPause::Wait() {
  const auto now = std::chrono::steady_clock::now();
  if (std::exchange(found_, false)) last_ = now;
  const bool busy = now - last_ < kBusyFor;
  platform::SleepMicroseconds(busy ? kBusyPause_us : kIdlePause_us);
}

}  // namespace ZEPH_MCUC
