// The board's time. At speed 1 it is the PC's plus the offset in the file `clock`. At a higher
// speed it starts there and then moves by the waits of the thread that keeps time, so that a PC
// that stalls stalls the board's time and the daemon's loop misses no minute.
#include <platform/system.h>

#include <atomic>
#include <cstring>

#include "board/board.h"
#include "board/files.h"
#include "board/folder.h"
#include "posix/wait.h"

namespace board {
namespace {

constexpr std::int64_t kMicroseconds = 1000000;
// Shorter waits are a thread's looks for work. They are not divided, save those that carry the
// board's time: the sooner looks would find nothing and keep the PC busy.
constexpr std::uint64_t kShortestDivided_us = 1000;

thread_local bool t_keeps_time = false;

std::atomic<std::int64_t> g_waited{0};  // microseconds, at a speed above 1

std::atomic_ref<std::int64_t> Offset() {
  static auto* const offset =
      reinterpret_cast<std::int64_t*>(MapShared(Folder() / "clock", sizeof(std::int64_t)));
  return std::atomic_ref<std::int64_t>(*offset);
}

std::int64_t PcMicroseconds() {
  struct timespec now {};
  clock_gettime(CLOCK_REALTIME, &now);
  return now.tv_sec * kMicroseconds + now.tv_nsec / 1000;
}

// The board's time without the offset.
std::int64_t BaseMicroseconds() {
  if (Config().speed == 1) return PcMicroseconds();
  static const std::int64_t start = PcMicroseconds();
  return start + g_waited.load(std::memory_order_relaxed);
}

struct timeval BoardTime() {
  const std::int64_t now = BaseMicroseconds() + Offset().load(std::memory_order_relaxed);
  std::int64_t seconds = now / kMicroseconds;
  std::int64_t rest = now % kMicroseconds;
  if (rest < 0) {
    --seconds;
    rest += kMicroseconds;
  }
  struct timeval time {};
  time.tv_sec = static_cast<decltype(time.tv_sec)>(seconds);
  time.tv_usec = static_cast<decltype(time.tv_usec)>(rest);
  return time;
}

}  // namespace
}  // namespace board

namespace platform {

void SleepMicroseconds(std::uint64_t microseconds) {
  const std::uint64_t speed = board::Config().speed;
  const bool look = microseconds < board::kShortestDivided_us && !board::t_keeps_time;
  if (speed == 1 || look) {
    posix::WaitAtLeast(microseconds);
  } else {
    posix::WaitAtLeast((microseconds + speed - 1) / speed);
  }
  if (speed > 1 && board::t_keeps_time) {
    board::BaseMicroseconds();  // the time has started before its first wait moves it
    board::g_waited.fetch_add(static_cast<std::int64_t>(microseconds), std::memory_order_relaxed);
  }
}

void KeepTime() {
  board::t_keeps_time = true;
  board::BaseMicroseconds();
}

std::time_t Time() { return board::BoardTime().tv_sec; }

int GetTimeOfDay(struct timeval* time, struct timezone* zone) {
  if (zone != nullptr) {
    struct timeval unused {};
    gettimeofday(&unused, zone);
  }
  if (time != nullptr) *time = board::BoardTime();
  return 0;
}

int SetTimeOfDay(const struct timeval* time, const struct timezone*) {
  if (time == nullptr || time->tv_sec < 0 || time->tv_usec < 0 ||
      time->tv_usec >= board::kMicroseconds) {
    return -1;
  }
  const auto order = board::TraceOrder(board::TraceKind::kClock);
  const std::int64_t wanted = time->tv_sec * board::kMicroseconds + time->tv_usec;
  board::Offset().store(wanted - board::BaseMicroseconds(), std::memory_order_relaxed);
  if (order) board::Trace(board::TraceKind::kClock, "set " + std::to_string(time->tv_sec));
  return 0;
}

}  // namespace platform
