// Waiting for something that another thread or process does.
#pragma once

#include <chrono>
#include <thread>

namespace support {

// Whether the condition holds before `limit` is over; it is asked again and again.
template <class Condition>
bool Eventually(Condition condition, std::chrono::milliseconds limit = std::chrono::seconds(20)) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::microseconds(200));
  }
  return true;
}

}  // namespace support
