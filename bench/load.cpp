#include "load.h"

#include <time.h>

#include <algorithm>
#include <stdexcept>

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;
using Microseconds = std::chrono::duration<double, std::micro>;

constexpr auto kWarmUp = std::chrono::milliseconds(200);

double CpuMicroseconds(int process) {
  clockid_t clock{};
  timespec time{};
  if (clock_getcpuclockid(process, &clock) != 0 || clock_gettime(clock, &time) != 0) {
    throw std::runtime_error("cannot read the server's CPU time");
  }
  return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
}

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

}  // namespace

Figures Measure(Link& link, std::uint32_t depth, std::chrono::milliseconds duration, int server) {
  Run(link, depth).For(kWarmUp);
  const double cpu = CpuMicroseconds(server);
  const Clock::time_point begin = Clock::now();
  std::vector<float> times = Run(link, depth).For(duration);
  const double elapsed = Microseconds(Clock::now() - begin).count();
  const auto count = static_cast<double>(times.size());
  return {
      .per_second = count * 1e6 / elapsed,
      .median_us = Percentile(times, 0.5),
      .p99_us = Percentile(times, 0.99),
      .cpu_us = (CpuMicroseconds(server) - cpu) / count,
  };
}

}  // namespace bench
