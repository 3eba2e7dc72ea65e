#include "board/mbus_registry.h"

#include <utility>

namespace board::mbus {

std::shared_ptr<Peer> Registry::Put(std::shared_ptr<Peer> peer) {
  const std::lock_guard lock(mutex_);
  std::shared_ptr<Peer>& place = peers_[peer->id];
  return std::exchange(place, std::move(peer));
}

void Registry::Remove(const Peer& peer) {
  const std::lock_guard lock(mutex_);
  const auto place = peers_.find(peer.id);
  if (place != peers_.end() && place->second.get() == &peer) peers_.erase(place);
}

std::shared_ptr<Peer> Registry::Find(std::uint32_t id) const {
  const std::lock_guard lock(mutex_);
  const auto place = peers_.find(id);
  return place == peers_.end() ? nullptr : place->second;
}

}  // namespace board::mbus
