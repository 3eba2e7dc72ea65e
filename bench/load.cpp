#include "load.h"

#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <fstream>
#include <future>
#include <stdexcept>
#include <thread>

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;
using Microseconds = std::chrono::duration<double, std::micro>;

constexpr auto kWarmUp = std::chrono::milliseconds(100);

double CpuMicroseconds(int process) {
  clockid_t clock{};
  timespec time{};
  if (clock_getcpuclockid(process, &clock) != 0 || clock_gettime(clock, &time) != 0) {
    throw std::runtime_error("cannot read the server's CPU time");
  }
  return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
}

// Time outside the kernel, in the ticks that the system counts.
double UserMicroseconds(int process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/stat");
  std::string word;
  while (file >> word && word.back() != ')') continue;  // the name, which may hold blanks
  constexpr int kFieldsBefore = 11;
  for (int i = 0; i < kFieldsBefore; ++i) file >> word;
  double ticks = 0;
  file >> ticks;
  return ticks * 1e6 / static_cast<double>(sysconf(_SC_CLK_TCK));
}

// A thread that sleeps and notes how late it woke, at worst.
class Sleeper {
 public:
  Sleeper() : thread_([this] { Run(); }) {}
  ~Sleeper() { Stop(); }
  Sleeper(const Sleeper&) = delete;
  Sleeper& operator=(const Sleeper&) = delete;

  double Stop() {
    stop_ = true;
    if (thread_.joinable()) thread_.join();
    return latest_us_;
  }

 private:
  void Run() {
    constexpr auto kNap = std::chrono::milliseconds(1);
    while (!stop_) {
      const Clock::time_point due = Clock::now() + kNap;
      std::this_thread::sleep_until(due);
      latest_us_ = std::max(latest_us_, Microseconds(Clock::now() - due).count());
    }
  }

  std::atomic<bool> stop_{false};
  double latest_us_ = 0;
  std::thread thread_;
};

double Percentile(std::vector<float>& times, double share) {
  const auto rank = static_cast<std::ptrdiff_t>(share * static_cast<double>(times.size() - 1));
  std::nth_element(times.begin(), times.begin() + rank, times.end());
  return times[static_cast<std::size_t>(rank)];
}

// One run: a tag is the index of a place in flight, and is used again as soon as it is answered.
class Run {
 public:
  Run(Link& link, std::uint32_t depth) : link_(link), sent_at_(depth + 1) {}

  std::vector<float> For(std::chrono::milliseconds duration) {
    const Clock::time_point end = Clock::now() + duration;
    for (std::uint32_t tag = 1; tag < sent_at_.size(); ++tag) Send(tag);
    bool going = true;
    while (open_ > 0) {
      arrived_.clear();
      link_.Receive(arrived_);
      const Clock::time_point now = Clock::now();
      going = going && now < end;
      for (const std::uint32_t tag : arrived_) {
        times_.push_back(static_cast<float>(Microseconds(now - sent_at_.at(tag)).count()));
        --open_;
        if (going) Send(tag);
      }
    }
    return std::move(times_);
  }

 private:
  void Send(std::uint32_t tag) {
    sent_at_[tag] = Clock::now();
    link_.Send(tag);
    ++open_;
  }

  Link& link_;
  std::vector<Clock::time_point> sent_at_;
  std::vector<std::uint32_t> arrived_;
  std::vector<float> times_;
  std::uint32_t open_ = 0;
};

// All links at once, a thread each; the times of all.
std::vector<float> RunAll(std::span<const std::unique_ptr<Link>> links, std::uint32_t depth,
                          std::chrono::milliseconds duration) {
  std::vector<std::future<std::vector<float>>> runs;
  for (const auto& link : links) {
    runs.push_back(std::async(std::launch::async, [&] { return Run(*link, depth).For(duration); }));
  }
  std::vector<float> all;
  for (auto& run : runs) {
    const std::vector<float> times = run.get();
    all.insert(all.end(), times.begin(), times.end());
  }
  return all;
}

}  // namespace

Figures Measure(std::span<const std::unique_ptr<Link>> links, std::uint32_t depth,
                std::chrono::milliseconds duration, int server) {
  RunAll(links, depth, kWarmUp);
  Sleeper sleeper;
  const double cpu = CpuMicroseconds(server);
  const double user = UserMicroseconds(server);
  const Clock::time_point begin = Clock::now();
  std::vector<float> times = RunAll(links, depth, duration);
  const double elapsed = Microseconds(Clock::now() - begin).count();
  const double cpu_used = CpuMicroseconds(server) - cpu;
  const double user_used = UserMicroseconds(server) - user;
  const double stall = sleeper.Stop();
  const double median = Percentile(times, 0.5);
  const double worst = Percentile(times, 1);
  const auto count = static_cast<double>(times.size());
  return {
      .per_second = count * 1e6 / elapsed,
      .median_us = median,
      .p99_us = Percentile(times, 0.99),
      .worst_us = worst,
      .cpu_us = cpu_used / count,
      .user_us = user_used / count,
      .stall_us = stall,
      .own_worst_us = std::max(median, worst - stall),
  };
}

}  // namespace bench
