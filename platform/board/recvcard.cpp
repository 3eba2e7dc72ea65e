// The link to the cards as the daemon reaches it: the packet is checked, then faults, cards, trace.
#include <platform/recvcard.h>

#include <array>
#include <cstdio>
#include <span>

#include "board/board.h"
#include "board/cards.h"
#include "board/packets.h"

namespace board {
namespace {

constexpr std::uint8_t kFpga = 1;
constexpr std::uint8_t kReadCode = 0;
constexpr std::uint8_t kWriteCode = 1;

// The header's sum, with that of the data where those go down too.
std::uint16_t SumOf(const RECVCARD_MESG_T& head, std::span<const std::uint8_t> data) {
  const auto byte = [](std::uint32_t number, int index) {
    return static_cast<std::uint8_t>(number >> (8 * index));
  };
  const std::array<std::uint8_t, 12> header = {head.DeviceType,
                                               head.ProtAddr,
                                               byte(head.BoardAddr, 0),
                                               byte(head.BoardAddr, 1),
                                               head.code,
                                               head.PacketType,
                                               byte(head.RegisterAddr, 0),
                                               byte(head.RegisterAddr, 1),
                                               byte(head.RegisterAddr, 2),
                                               byte(head.RegisterAddr, 3),
                                               byte(head.length, 0),
                                               byte(head.length, 1)};
  return static_cast<std::uint16_t>(PacketSum(header) + PacketSum(data));
}

// What is wrong with a call, in words; null where nothing is.
const char* Flaw(std::uint8_t index, const RECVCARD_MESG_T* head, std::uint16_t port,
                 std::uint8_t code, std::span<const std::uint8_t> summed) {
  if (index != kFpga) return "cards are behind FPGA 1 alone";
  if (head->code != code) return "the packet's code is not that of the call";
  if (head->ProtAddr != (port & 0xFF)) return "the packet names another port";
  if (head->checksum != SumOf(*head, summed)) return "the packet's sum is wrong";
  return nullptr;
}

bool Refused(const char* flaw) {
  if (flaw != nullptr) std::fprintf(stderr, "board: a card access is refused: %s\n", flaw);
  return flaw != nullptr;
}

void TraceAccess(char direction, const RECVCARD_MESG_T& head, std::uint16_t port, bool done,
                 const void* data) {
  char words[80];
  std::snprintf(words, sizeof words, "%c %u %u %u 0x%08x %u %d ", direction, head.DeviceType, port,
                head.BoardAddr, head.RegisterAddr, head.length, done ? 0 : -1);
  char sum[8];
  std::snprintf(sum, sizeof sum, "0x%04x", head.checksum);
  Trace(TraceKind::kCard, words + Hex(data, done ? head.length : 0) + " " + sum);
}

}  // namespace
}  // namespace board

int32_t ReadFPGAformRecvCard(uint8_t index, RECVCARD_MESG_T* head, uint16_t port, uint8_t* data) {
  if (head == nullptr || (data == nullptr && head->length > 0)) return -1;
  const auto order = board::TraceOrder(board::TraceKind::kCard);
  const board::CardAddress from{head->DeviceType, port, head->BoardAddr};
  const bool done = !board::Refused(board::Flaw(index, head, port, board::kReadCode, {})) &&
                    !board::TakeFault(board::Fault::kCardRead) &&
                    board::ReadCard(from, head->RegisterAddr, {data, head->length});
  if (order) board::TraceAccess('R', *head, port, done, data);
  return done ? 0 : -1;
}

int32_t WriteFPGAToRecvCard(uint8_t index, RECVCARD_MESG_T* head, uint16_t port,
                            const uint8_t* data) {
  if (head == nullptr || (data == nullptr && head->length > 0)) return -1;
  const auto order = board::TraceOrder(board::TraceKind::kCard);
  const std::span<const std::uint8_t> bytes(data, head->length);
  const bool done = !board::Refused(board::Flaw(index, head, port, board::kWriteCode, bytes)) &&
                    !board::TakeFault(board::Fault::kCardWrite);
  if (done) {
    board::WriteCards({head->DeviceType, port, head->BoardAddr}, head->RegisterAddr, bytes);
  }
  if (order) board::TraceAccess('W', *head, port, done, data);
  return done ? 0 : -1;
}
