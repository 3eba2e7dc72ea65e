#include "board/packets.h"

#include <cstdio>
#include <memory>
#include <mutex>
#include <numeric>
#include <optional>
#include <string>
#include <vector>

#include "board/board.h"
#include "board/cards.h"
#include "board/cells.h"

namespace board {
namespace {

constexpr std::uint32_t kLargeBuffer = 0x300000;

constexpr std::size_t kHeaderSize = 12;
constexpr std::size_t kSumSize = 2;
constexpr std::uint8_t kWriteCode = 1;

// A packet as it lies in a buffer.
struct Packet {
  std::vector<std::uint8_t> bytes;

  unsigned Number(std::size_t at, std::size_t width) const {
    unsigned number = 0;
    for (std::size_t i = 0; i < width && at + i < bytes.size(); ++i) {
      number |= static_cast<unsigned>(bytes[at + i]) << (8 * i);
    }
    return number;
  }
  std::uint8_t type() const { return static_cast<std::uint8_t>(Number(0, 1)); }
  std::uint16_t board() const { return static_cast<std::uint16_t>(Number(2, 2)); }
  bool writes() const { return Number(4, 1) == kWriteCode; }
  std::uint32_t first() const { return Number(6, 4); }
  std::size_t length() const { return Number(10, 2); }
  unsigned sum() const { return Number(kHeaderSize + length(), kSumSize); }

  std::span<const std::uint8_t> data() const {
    return std::span(bytes).subspan(kHeaderSize, length());
  }

  bool IsRight() const {
    return bytes.size() >= kHeaderSize + length() + kSumSize &&
           PacketSum(std::span(bytes).first(kHeaderSize + length())) == sum();
  }
};

struct Loaded {
  Packet packet;
  std::uint16_t port;
};

// The small buffer's side of the FPGA.
struct SmallBuffer {
  std::mutex lock;
  std::uint16_t port = 0;
  std::optional<Loaded> loaded;
};

SmallBuffer& Small() {
  static SmallBuffer& buffer = *std::make_unique<SmallBuffer>().release();
  return buffer;
}

void Send(const Packet& packet, std::uint16_t port) {
  const bool good = packet.IsRight() && port < kPorts;
  const auto order = TraceOrder(TraceKind::kCard);
  const CardAddress to{packet.type(), port, packet.board()};
  if (good && packet.writes()) WriteCards(to, packet.first(), packet.data());
  if (good && !packet.writes()) TouchCards(to);
  if (!order) return;
  char words[80];
  std::snprintf(words, sizeof words, "P %u %u %u 0x%08x %zu %d ", packet.type(), port,
                packet.board(), packet.first(), packet.length(), good ? 0 : -1);
  char sum[8];
  std::snprintf(sum, sizeof sum, "0x%04x", packet.sum());
  const auto hex = good ? Hex(packet.data().data(), packet.length()) : "-";
  Trace(TraceKind::kCard, words + hex + " " + sum);
}

// The packet that the large buffer holds, as long as its header says.
Packet LargePacket() {
  Packet packet{std::vector<std::uint8_t>(kHeaderSize)};
  LoadCells(1, kLargeBuffer, kHeaderSize, packet.bytes.data());
  packet.bytes.resize(kHeaderSize + packet.length() + kSumSize);
  LoadCells(1, kLargeBuffer, static_cast<std::uint32_t>(packet.bytes.size()), packet.bytes.data());
  return packet;
}

// A byte to the port cell sends the packet that is loaded, where it is 0, or selects a port.
void FollowPortByte(std::uint8_t value) {
  std::optional<Loaded> sent;
  {
    SmallBuffer& small = Small();
    const std::lock_guard hold(small.lock);
    small.port = value / 2;
    if (value == 0) sent.swap(small.loaded);
  }
  if (sent) Send(sent->packet, sent->port);
}

void LoadSmallBuffer(std::span<const std::uint8_t> data) {
  SmallBuffer& small = Small();
  const std::lock_guard hold(small.lock);
  small.loaded = Loaded{Packet{{data.begin(), data.end()}}, small.port};
}

}  // namespace

void FollowWrite(std::uint32_t cell, std::span<const std::uint8_t> data) {
  if (cell == kPortCell && data.size() == 1) {
    FollowPortByte(data[0]);
  } else if (cell == kSmallBuffer) {
    LoadSmallBuffer(data);
  } else if (const std::uint8_t value = data[kSendCell - cell]; value % 2 == 1) {
    Send(LargePacket(), value / 2);
  }
}

std::uint16_t PacketSum(std::span<const std::uint8_t> bytes) {
  return static_cast<std::uint16_t>(std::accumulate(bytes.begin(), bytes.end(), 0U));
}

}  // namespace board
