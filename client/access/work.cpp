#include "access/work.h"

#include <unistd.h>

#include <thread>

namespace quivord::access {
namespace {

constexpr auto kLook = std::chrono::milliseconds(20);

// A byte of the screen parameters that nothing uses and nothing stores. A write to it goes through
// the device's queue, so once it shows, all that was queued before is done.
constexpr std::uint32_t kQueueMark = 0x0210001F;

}  // namespace

Outcome AwaitWork(const Registers& sender, std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  const auto before = sender.ReadWhole(kQueueMark, 1);
  if (!before) return before.error();
  // Another byte than the present one, and mostly another than a second client's.
  const auto mark = static_cast<std::uint8_t>(before.value()[0] + 1 + getpid() % 255);
  const auto written = sender.Write(kQueueMark, {mark});
  if (!written) return written.error();
  while (true) {
    const auto now = sender.ReadWhole(kQueueMark, 1);
    if (!now) return now.error();
    if (now.value()[0] == mark) return Done{};
    if (std::chrono::steady_clock::now() >= deadline) break;
    std::this_thread::sleep_for(kLook);
  }
  return Error{Trouble::kRefused, "the device has taken it and is still at work"};
}

}  // namespace quivord::access
