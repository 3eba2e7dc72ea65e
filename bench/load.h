// A client that keeps a number of requests in flight and measures what comes back.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace bench {

// A connection to a server that answers each request once.
class Link {
 public:
  virtual ~Link() = default;

  // Sends the request with this tag, waiting for room.
  virtual void Send(std::uint32_t tag) = 0;

  // Waits for replies; appends the tags of all that one look brings, at least one. Throws
  // std::runtime_error when none comes or a reply is wrong.
  virtual void Receive(std::vector<std::uint32_t>& tags) = 0;
};

struct Figures {
  double per_second = 0;
  double median_us = 0;
  double p99_us = 0;
  double worst_us = 0;
  double cpu_us = 0;    // of the server, a request
  double user_us = 0;   // of it outside the kernel; counted in ticks of 10 ms
  double stall_us = 0;  // how late the machine woke a thread that slept beside the run, at worst
  double own_worst_us = 0;  // the worst wait less that, and not below the median
};

// Keeps `depth` requests in flight on each link, one thread a link, for about `duration`, after a
// short run to warm up, and watches the CPU time of process `server`.
Figures Measure(std::span<const std::unique_ptr<Link>> links, std::uint32_t depth,
                std::chrono::milliseconds duration, int server);

}  // namespace bench
