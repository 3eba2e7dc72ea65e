// The peers of a recording on the bus of a board: each registers under its own identifier, sends
// frames as they are and gets what the daemon sends it. One thread at a time.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <vector>

#include "lib/descriptor.h"
#include "lib/socket.h"
#include "quivord/result.h"
#include "record/recording.h"

namespace quivord::record {

// A frame from the daemon.
struct Arrived {
  std::uint32_t peer = 0;
  std::uint32_t tag = 0;  // of the request that it answers; 0 where it answers none
  Bytes frame;
};

class Peers {
 public:
  using Take = std::function<void(Arrived)>;

  // `take` gets what arrives, during `Listen`.
  Peers(std::filesystem::path board, Take take);

  // Puts the peer on the bus, unless it is there already.
  Outcome Join(std::uint32_t peer);
  void Leave(std::uint32_t peer) { sockets_.erase(peer); }

  // Sends `frame` under `tag` from a peer that has joined, waiting for room until `deadline`.
  Outcome Send(std::uint32_t peer, std::uint32_t tag, const Bytes& frame,
               Clock::time_point deadline);

  // Waits until something arrives or `deadline` comes, and takes what is there. kDisconnected where
  // the other side has ended one of the connections.
  Outcome Listen(Clock::time_point deadline);

 private:
  Outcome TakeAll(std::uint32_t peer, int socket);

  const std::filesystem::path board_;
  const Take take_;
  std::map<std::uint32_t, Descriptor> sockets_;
  Bytes buffer_;
};

}  // namespace quivord::record
