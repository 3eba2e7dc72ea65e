// Ctrl-C and termination wait while something of the device's has to be put back.
#pragma once

#include <array>
#include <csignal>

namespace ctl {

// While one of these lives, SIGINT and SIGTERM are only noted; at its end the last one noted takes
// effect. One at a time, in the main thread.
class HeldSignals {
 public:
  HeldSignals();
  ~HeldSignals();
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;

 private:
  static constexpr std::array kNumbers{SIGINT, SIGTERM};
  std::array<void (*)(int), kNumbers.size()> before_{};
};

}  // namespace ctl
