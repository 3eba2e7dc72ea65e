#include "live/publisher.h"

#include "live/describe.h"

namespace quivord::live {

Publisher::Publisher(std::filesystem::path folder)
    : observer_(std::move(folder)), thread_([this] { Run(); }) {}

Publisher::~Publisher() {
  Close();
  thread_.join();
}

std::shared_ptr<Publisher::Seat> Publisher::Join() {
  const std::lock_guard hold(mutex_);
  if (pages_ >= kMostPages || closed_) return nullptr;
  ++pages_;
  changed_.notify_all();
  return std::make_shared<Seat>(*this);
}

bool Publisher::full() const {
  const std::lock_guard hold(mutex_);
  return pages_ >= kMostPages;
}

void Publisher::Leave() {
  const std::lock_guard hold(mutex_);
  // Whoever comes next wants to see the board as it is then.
  if (--pages_ == 0) current_ = nullptr;
}

std::shared_ptr<const State> Publisher::Await(const std::shared_ptr<const State>& seen,
                                              std::chrono::milliseconds patience) {
  std::unique_lock hold(mutex_);
  const auto newer = [&] { return current_ != nullptr && current_ != seen; };
  changed_.wait_for(hold, patience, [&] { return closed_ || newer(); });
  return !closed_ && newer() ? current_ : nullptr;
}

void Publisher::Close() {
  const std::lock_guard hold(mutex_);
  closed_ = true;
  changed_.notify_all();
}

bool Publisher::closed() const {
  const std::lock_guard hold(mutex_);
  return closed_;
}

void Publisher::Run() {
  std::optional<Snapshot> before;
  State state;
  std::unique_lock hold(mutex_);
  while (true) {
    if (pages_ == 0) observer_.Rest();
    changed_.wait(hold, [this] { return closed_ || pages_ > 0; });
    if (closed_) return;
    hold.unlock();
    Snapshot snapshot = observer_.Look();
    State now = Describe(snapshot, before.has_value() ? &*before : nullptr, state);
    before = std::move(snapshot);
    hold.lock();
    if (current_ == nullptr || now != state) current_ = std::make_shared<const State>(now);
    state = std::move(now);
    changed_.notify_all();
    changed_.wait_for(hold, kBeat, [this] { return closed_; });
  }
}

}  // namespace quivord::live
