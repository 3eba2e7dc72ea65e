// A board folder whose bus is played by the test: one client connects, and gets what the test says.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "support/raw_peer.h"

namespace support {

class FakeDaemon {
 public:
  // Listens in a new temporary folder.
  FakeDaemon();
  ~FakeDaemon();
  FakeDaemon(const FakeDaemon&) = delete;
  FakeDaemon& operator=(const FakeDaemon&) = delete;

  const std::filesystem::path& board() const { return board_; }

  // Takes the next connection; the identifier that it registers.
  std::uint32_t Accept();

  // The client's next packet; nothing where none comes within some seconds.
  std::optional<Bytes> Receive();

  void Send(const Bytes& packet);

  // Ends the connection, as a daemon that dies does.
  void HangUp();

 private:
  std::filesystem::path board_;
  int listener_ = -1;
  int client_ = -1;
};

}  // namespace support
