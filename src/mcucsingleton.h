// The one instance of a class, made on first use.
#pragma once

#include <atomic>

#include "mcucmutex.h"

namespace ZEPH_MCUC {

// A class T that derives from this has its one instance behind `getInstance`, from any thread, and
// `deleteInstance`, which normal running never calls.
template <class T>
class Singleton {
 public:
  static T* getInstance() {
    if (T* instance = m_pInstance.load(std::memory_order_acquire)) return instance;
    const CMutexGuardT guard(m_lock);
    T* instance = m_pInstance.load(std::memory_order_relaxed);
    if (instance == nullptr) {
      instance = new T;
      m_pInstance.store(instance, std::memory_order_release);
    }
    return instance;
  }

  static void deleteInstance() {
    const CMutexGuardT guard(m_lock);
    delete m_pInstance.exchange(nullptr);
  }

 private:
  static inline constinit std::atomic<T*> m_pInstance{nullptr};
  static inline constinit CMutexThreadRecursive m_lock;
};

}  // namespace ZEPH_MCUC
