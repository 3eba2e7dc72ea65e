// The daemon's polling loop by hand: passes one after the other, the board's clock moved by the
// test. Configure the board with a `speed` above 1, so that its time stands still in between.
#pragma once

#include <gtest/gtest.h>
#include <platform/system.h>

#include <cstdint>
#include <cstdlib>

#include "mcuctrace.h"
#include "stub/mcuqmbthread.h"
#include "support/inprocess.h"

namespace loop {

inline constexpr std::int64_t kSecond_us = 1'000'000;
inline constexpr std::int64_t kPass_us = 200'000;

inline std::int64_t BoardTime_us() {
  timeval now{};
  platform::GetTimeOfDay(&now, nullptr);
  return now.tv_sec * kSecond_us + now.tv_usec;
}

inline void SetBoardTime_us(std::int64_t time_us) {
  timeval now{};
  now.tv_sec = time_us / kSecond_us;
  now.tv_usec = time_us % kSecond_us;
  ASSERT_EQ(platform::SetTimeOfDay(&now, nullptr), 0);
}

// Starts the daemon without threads at `seconds` since 1970, in universal time. The calling
// thread's waits move the clock.
inline void Start(std::int64_t seconds) {
  setenv("TZ", "UTC0", 1);
  ZEPH_MCUC::g_logLevel = ZEPH_MCUC::kLogNothing;
  inprocess::Start();
  platform::KeepTime();
  SetBoardTime_us(seconds * kSecond_us);
}

inline void Pass() {
  ZEPH_MCUC::McuQMBThread::PollingPass();
  SetBoardTime_us(BoardTime_us() + kPass_us);
}

inline void Passes(int count) {
  for (int i = 0; i < count; ++i) Pass();
}

}  // namespace loop
