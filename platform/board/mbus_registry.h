// Who is registered under which task identifier. Any thread.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "board/mbus_peer.h"

namespace board::mbus {

class Registry {
 public:
  // Puts `peer` under its identifier; returns the one whose place it takes, or null.
  std::shared_ptr<Peer> Put(std::shared_ptr<Peer> peer);

  // Removes `peer`, unless another one has taken its place.
  void Remove(const Peer& peer);

  // The peer with this identifier, or null.
  std::shared_ptr<Peer> Find(std::uint32_t id) const;

 private:
  mutable std::mutex mutex_;
  std::unordered_map<std::uint32_t, std::shared_ptr<Peer>> peers_;  // guarded by `mutex_`
};

}  // namespace board::mbus
