// Packets over SOCK_SEQPACKET sockets, as the bare server and the daemon's bus both speak them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

#include "load.h"

namespace bench {

// 48 bytes: an envelope and the frame of a read. `tag` travels in the envelope.
std::vector<std::uint8_t> ReadRequest(std::uint32_t tag);

int ListenOn(const std::filesystem::path& path);
int ConnectTo(const std::filesystem::path& path);

class SeqpacketLink : public Link {
 public:
  // Takes the socket over. A reply has `reply_size` bytes.
  SeqpacketLink(int socket, std::size_t reply_size);
  ~SeqpacketLink() override;
  void Send(std::uint32_t tag) override;
  void Receive(std::vector<std::uint32_t>& tags) override;

 private:
  const int socket_;
  const std::size_t reply_size_;
  std::vector<std::uint8_t> request_;
};

}  // namespace bench
