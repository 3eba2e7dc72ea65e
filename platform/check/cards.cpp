// platform/recvcard.h: the devices behind the ports. A card is only read.
#include <platform/recvcard.h>

#include "check/report.h"

namespace check {
namespace {

constexpr std::uint8_t kReceivingCard = 1, kFpga = 1;
constexpr std::uint8_t kRead = 0, kWrite = 1;
constexpr std::uint32_t kSizeRegister = 0x02000017;  // width and height
constexpr Card kNobody{15, 0xFFF0};

std::uint16_t SumOf(const RECVCARD_MESG_T& head, const std::uint8_t* data) {
  std::uint32_t sum = head.DeviceType + head.ProtAddr + head.code + head.PacketType;
  for (const std::uint32_t word :
       {std::uint32_t{head.BoardAddr}, head.RegisterAddr, std::uint32_t{head.length}}) {
    for (int shift = 0; shift < 32; shift += 8) sum += word >> shift & 0xFF;
  }
  for (int i = 0; data != nullptr && i < head.length; ++i) sum += data[i];
  return static_cast<std::uint16_t>(sum);
}

RECVCARD_MESG_T Head(Card card, std::uint8_t code, const Buffer& bytes, const std::uint8_t* data) {
  RECVCARD_MESG_T head{};
  head.DeviceType = kReceivingCard;
  head.ProtAddr = card.port;
  head.BoardAddr = card.board;
  head.code = code;
  head.RegisterAddr = kSizeRegister;
  head.length = static_cast<std::uint16_t>(bytes.size());
  head.checksum = SumOf(head, data);
  return head;
}

bool Read(Card card, Buffer& bytes) {
  RECVCARD_MESG_T head = Head(card, kRead, bytes, nullptr);
  return ReadFPGAformRecvCard(kFpga, &head, card.port, bytes.data()) == 0;
}

}  // namespace

void Cards(Report& report, const Options& options) {
  Buffer bytes(4);
  report.Holds(!Read(kNobody, bytes) && bytes.Untouched(),
               "a read from a card that is not there fails and moves nothing");
  RECVCARD_MESG_T head = Head(kNobody, kWrite, bytes, bytes.data());
  report.Holds(WriteFPGAToRecvCard(kFpga, &head, kNobody.port, bytes.data()) == 0,
               "a write is sent, whether or not anybody is there");
  constexpr const char* kClaim = "a card tells its size, several threads asking";
  if (!options.card) return report.Skip(kClaim, "needs --card PORT BOARD");
  report.Holds(AtOnce(3,
                      [&](int) {
                        Buffer first(4), second(4);
                        return Read(*options.card, first) && Read(*options.card, second) &&
                               first == second && first.Untouched(4);
                      }),
               kClaim);
}

}  // namespace check
