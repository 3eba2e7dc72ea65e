#include "board/mbus_pool.h"

#include <utility>

namespace board::mbus {
namespace {

struct SizeClass {
  std::uint32_t capacity;
  std::int32_t
      most;  // messages kept; what is above goes back, so that a flood leaves nothing behind
};

// A request for a few registers, a page of the flash, what one read of a table brings, anything.
constexpr std::array<SizeClass, 4> kSizeClasses = {
    {{256, 1024}, {4352, 64}, {16384, 16}, {kMostMessage, 8}}};

std::uint8_t ClassFor(std::uint32_t length) {
  std::uint8_t index = 0;
  while (kSizeClasses[index].capacity < length) ++index;
  return index;
}

std::unique_ptr<mbus_msg_t> NewMessage(std::uint8_t sizeClass) {
  auto message = std::make_unique<mbus_msg_t>();
  message->sizeClass = sizeClass;
  message->bytes = std::make_unique_for_overwrite<std::uint8_t[]>(kSizeClasses[sizeClass].capacity);
  return message;
}

}  // namespace

mbus_msg_t* MessagePool::Take(std::uint32_t length) {
  const std::uint8_t sizeClass = ClassFor(length);
  Shelf& shelf = shelves_[sizeClass];
  if (shelf.free == nullptr) shelf.free = shelf.returned.TakeAll();
  mbus_msg_t* message = shelf.free;
  if (message == nullptr) {
    message = NewMessage(sizeClass).release();  // comes back by `Give`
  } else {
    shelf.free = std::exchange(message->next, nullptr);
    shelf.kept.fetch_sub(1, std::memory_order_relaxed);
  }
  message->length = length;
  return message;
}

void MessagePool::Give(mbus_msg_t* message) {
  Shelf& shelf = shelves_[message->sizeClass];
  if (shelf.kept.fetch_add(1, std::memory_order_relaxed) < kSizeClasses[message->sizeClass].most) {
    shelf.returned.Push(message);
    return;
  }
  shelf.kept.fetch_sub(1, std::memory_order_relaxed);
  const std::unique_ptr<mbus_msg_t> surplus(message);
}

}  // namespace board::mbus
