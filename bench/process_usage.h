// What a process uses, as the system counts it.
#pragma once

#include <sys/types.h>

#include <ctime>
#include <fstream>
#include <string>

namespace bench {

// CPU time of all its threads so far; 0 where it can't be read.
inline double CpuSeconds(pid_t pid) {
  clockid_t clock{};
  timespec used{};
  if (clock_getcpuclockid(pid, &clock) != 0 || clock_gettime(clock, &used) != 0) return 0;
  return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) * 1e-9;
}

// A size from its status, such as "VmRSS:" (now) or "VmHWM:" (at most so far), in KiB.
inline long SizeKiB(pid_t pid, const std::string& which) {
  std::ifstream status("/proc/" + std::to_string(pid) + "/status");
  std::string word;
  while (status >> word) {
    if (word == which) break;
  }
  long size = 0;
  status >> size;
  return size;
}

}  // namespace bench
