// A peer on the bus that may send anything at all.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

#include "stub/frame_layout.h"

namespace support {

using Bytes = std::vector<std::uint8_t>;

// The four bytes that register task `id`.
Bytes Registration(std::uint32_t id);

// A frame with a right sum; its head says how many data there are, or are asked for.
Bytes FrameOf(const ZEPH_MCUC::FrameHead& head, const Bytes& data = {});

// Envelope and frame: `frame` as it stands, the label's size its length unless another is given.
Bytes Message(const Bytes& frame, std::uint32_t id = 0, std::uint32_t tag = 0,
              std::optional<std::uint32_t> label_size = std::nullopt);

class RawPeer {
 public:
  // Connects to the bus socket of the board folder; throws std::system_error where nobody listens.
  // Registers as task `id`, save where that is 0.
  RawPeer(const std::filesystem::path& board, std::uint32_t id);
  RawPeer(RawPeer&& other) noexcept;
  RawPeer(const RawPeer&) = delete;
  RawPeer& operator=(const RawPeer&) = delete;
  ~RawPeer();

  // Sends one packet, waiting for room; false where the connection has ended.
  bool Send(const Bytes& packet);

  // The same without waiting; false also where there is no room.
  bool TrySend(const Bytes& packet);

  // The next packet; nothing after `limit` or at the connection's end.
  std::optional<Bytes> Receive(std::chrono::milliseconds limit = std::chrono::seconds(10));

  // Whether the other side ends the connection within `limit`; packets before that are dropped.
  bool Ended(std::chrono::milliseconds limit = std::chrono::seconds(10));

  void Close();

 private:
  int socket_;
};

}  // namespace support
