// The two mutexes of the daemon and their guard, marked so that clang checks who holds what.
#pragma once

#include <pthread.h>

#if defined(__clang__)
#define MCUC_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define MCUC_THREAD_ATTRIBUTE(x)
#endif

#define MCUC_CAPABILITY(name) MCUC_THREAD_ATTRIBUTE(capability(name))
#define MCUC_SCOPED_CAPABILITY MCUC_THREAD_ATTRIBUTE(scoped_lockable)
#define MCUC_GUARDED_BY(mutex) MCUC_THREAD_ATTRIBUTE(guarded_by(mutex))
#define MCUC_REQUIRES(...) MCUC_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define MCUC_ACQUIRE(...) MCUC_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define MCUC_RELEASE(...) MCUC_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))
#define MCUC_TRY_ACQUIRE(...) MCUC_THREAD_ATTRIBUTE(try_acquire_capability(__VA_ARGS__))

namespace ZEPH_MCUC {

// A mutex built before any code runs (constant-initialised) and never destroyed. The three
// operations return 0, or -1 where the system refuses; `TryLock` also where another thread holds
// it.
class MCUC_CAPABILITY("mutex") CMutexThread {
 public:
  constexpr CMutexThread() = default;
  CMutexThread(const CMutexThread&) = delete;
  CMutexThread& operator=(const CMutexThread&) = delete;

  int Lock() MCUC_ACQUIRE() { return pthread_mutex_lock(&mutex_) == 0 ? 0 : -1; }
  int UnLock() MCUC_RELEASE() { return pthread_mutex_unlock(&mutex_) == 0 ? 0 : -1; }
  int TryLock() MCUC_TRY_ACQUIRE(0) { return pthread_mutex_trylock(&mutex_) == 0 ? 0 : -1; }

 private:
  pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
};

// The same for a thread that may lock again what it holds; it unlocks as often.
class MCUC_CAPABILITY("mutex") CMutexThreadRecursive {
 public:
  constexpr CMutexThreadRecursive() = default;
  CMutexThreadRecursive(const CMutexThreadRecursive&) = delete;
  CMutexThreadRecursive& operator=(const CMutexThreadRecursive&) = delete;

  int Lock() MCUC_ACQUIRE() { return pthread_mutex_lock(&mutex_) == 0 ? 0 : -1; }
  int UnLock() MCUC_RELEASE() { return pthread_mutex_unlock(&mutex_) == 0 ? 0 : -1; }
  int TryLock() MCUC_TRY_ACQUIRE(0) { return pthread_mutex_trylock(&mutex_) == 0 ? 0 : -1; }

 private:
  pthread_mutex_t mutex_ = PTHREAD_RECURSIVE_MUTEX_INITIALIZER_NP;
};

// Holds a mutex for a scope.
template <class Mutex>
class MCUC_SCOPED_CAPABILITY CMutexGuardT {
 public:
  explicit CMutexGuardT(Mutex& mutex) MCUC_ACQUIRE(mutex) : mutex_(mutex) { mutex_.Lock(); }
  ~CMutexGuardT() MCUC_RELEASE() { mutex_.UnLock(); }
  CMutexGuardT(const CMutexGuardT&) = delete;
  CMutexGuardT& operator=(const CMutexGuardT&) = delete;

 private:
  Mutex& mutex_;
};

template <class Mutex>
CMutexGuardT(Mutex&) -> CMutexGuardT<Mutex>;

}  // namespace ZEPH_MCUC
