#include "board/mbus_message.h"

#include <utility>

namespace board::mbus {
namespace {

mbus_msg_t* Reversed(mbus_msg_t* list) {
  mbus_msg_t* reversed = nullptr;
  while (list != nullptr) {
    mbus_msg_t* rest = std::exchange(list->next, reversed);
    reversed = std::exchange(list, rest);
  }
  return reversed;
}

}  // namespace

mbus_msg_t* MessageQueue::Take() {
  if (empty()) return nullptr;
  const std::lock_guard lock(mutex_);
  mbus_msg_t* first = ordered_.load(std::memory_order_relaxed);
  if (first == nullptr) first = Reversed(arrived_.TakeAll());
  if (first == nullptr) return nullptr;
  ordered_.store(std::exchange(first->next, nullptr), std::memory_order_relaxed);
  return first;
}

bool MessageQueue::emptied() const {
  const std::lock_guard lock(mutex_);
  return empty();
}

}  // namespace board::mbus
