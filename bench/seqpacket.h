// Packets over SOCK_SEQPACKET sockets, as the bare server and the daemon's bus both speak them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

#include "load.h"

namespace bench {

// 48 bytes: an envelope and the frame of a read of `bytes` bytes of the test space. `tag` travels
// in the envelope.
std::vector<std::uint8_t> ReadRequest(std::uint32_t tag, std::uint16_t bytes);

int ListenOn(const std::filesystem::path& path);
int ConnectTo(const std::filesystem::path& path);

class SeqpacketLink : public Link {
 public:
  // Takes the socket over. Asks for `bytes` bytes; a reply packet has `reply_size`.
  SeqpacketLink(int socket, std::uint16_t bytes, std::size_t reply_size);
  ~SeqpacketLink() override;
  void Send(std::uint32_t tag) override;
  void Receive(std::vector<std::uint32_t>& tags) override;

 private:
  const int socket_;
  const std::size_t reply_size_;
  std::vector<std::uint8_t> request_;
};

}  // namespace bench
