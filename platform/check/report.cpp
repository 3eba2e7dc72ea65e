#include "check/report.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <string>
#include <thread>

namespace check {
namespace {

void Line(std::string_view verdict, std::string_view subject, std::string_view line) {
  std::string head(verdict);
  head.resize(6, ' ');
  head.append(subject).resize(19, ' ');
  std::puts(head.append(line).c_str());
  std::fflush(stdout);  // the line stands also where the next call ends the process
}

}  // namespace

bool Report::Holds(bool good, std::string_view claim) {
  Line(good ? "ok" : "FAIL", subject_, claim);
  ++(good ? holding_ : broken_);
  return good;
}

void Report::Skip(std::string_view claim, std::string_view why) {
  Line("skip", subject_, std::string(claim).append(": ").append(why));
  ++skipped_;
}

void Report::End() const {
  std::printf("%d hold, %d do not, %d not tried\n", holding_, broken_, skipped_);
}

Buffer::Buffer(std::size_t size) : bytes_(size + 2 * kFence, kFresh) {}

bool Buffer::Untouched(std::size_t first) const {
  const auto fresh = [](std::uint8_t byte) { return byte == kFresh; };
  const auto begin = bytes_.begin();
  return std::all_of(begin, begin + kFence, fresh) &&
         std::all_of(begin + static_cast<std::ptrdiff_t>(kFence + first), bytes_.end(), fresh);
}

bool AtOnce(int threads, const std::function<bool(int)>& work) {
  std::atomic<bool> good{true};
  std::vector<std::thread> running;
  running.reserve(static_cast<std::size_t>(threads));
  for (int i = 0; i < threads; ++i) {
    running.emplace_back([&, i] {
      if (!work(i)) good = false;
    });
  }
  for (std::thread& thread : running) thread.join();
  return good;
}

}  // namespace check
