#include "held_signals.h"

#include <atomic>

namespace ctl {
namespace {

std::atomic<int> g_noted{0};  // noted in whichever thread the signal meets
static_assert(std::atomic<int>::is_always_lock_free);

void Note(int number) { g_noted = number; }

}  // namespace

HeldSignals::HeldSignals() {
  g_noted = 0;
  for (std::size_t i = 0; i < kNumbers.size(); ++i) before_[i] = std::signal(kNumbers[i], Note);
}

HeldSignals::~HeldSignals() {
  for (std::size_t i = 0; i < kNumbers.size(); ++i) std::signal(kNumbers[i], before_[i]);
  if (g_noted != 0) std::raise(g_noted);
}

}  // namespace ctl
