// Transactions with the devices behind the output ports.
#include <platform/recvcard.h>

#include <algorithm>
#include <numeric>

#include "driverutil.h"
#include "mcuctrace.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint8_t kFpga = 1;
constexpr uint8_t kReadCode = 0;
constexpr uint8_t kWriteCode = 1;
constexpr uint8_t kAllPorts = 0xFF;
constexpr uint16_t kAllBoards = 0xFFFF;
constexpr uint16_t kLinkBits = 32;  // ports above have no link bit
constexpr int32_t kNotLinked = -2;

constexpr uint32_t BytesOf(uint32_t value) {
  return (value & 0xFF) + (value >> 8 & 0xFF) + (value >> 16 & 0xFF) + (value >> 24);
}

// The 16-bit sum of the twelve header bytes and of the data.
uint16_t FpgaSum(const RECVCARD_MESG_T& head, const uint8_t* data, uint16_t size) {
  const uint32_t header = BytesOf(head.DeviceType) + BytesOf(head.ProtAddr) +
                          BytesOf(head.BoardAddr) + BytesOf(head.code) + BytesOf(head.PacketType) +
                          BytesOf(head.RegisterAddr) + BytesOf(head.length);
  return static_cast<uint16_t>(std::accumulate(data, data + size, header));
}

RECVCARD_MESG_T Head(uint8_t code, uint32_t reg, uint16_t port, uint16_t board, uint16_t length,
                     uint8_t device) {
  RECVCARD_MESG_T head{};
  head.DeviceType = device;
  head.ProtAddr = static_cast<uint8_t>(port);
  head.BoardAddr = board;
  head.code = code;
  head.RegisterAddr = reg;
  head.length = length;
  return head;
}

bool IsLinked(const DriverUtil::LinkWords& links, uint16_t port) {
  if (port >= kLinkBits) return false;
  const uint32_t all = links.copper | links.fiber1 | links.fiber2;
  return (all >> port & 1) != 0;
}

}  // namespace

int32_t DriverUtil::ReadCardPara(uint32_t RegStartAddr, uint16_t PortAddr, uint16_t BoardAddr,
                                 uint16_t Num, uint8_t* ParaPtr, uint8_t DevType) {
  const CMutexGuardT guard(m_mutex_read);
  MCUC_LOG(kLogInfo, "ReadCardPara: Address = " << CTrace::hex << RegStartAddr
                                                << " port = " << PortAddr
                                                << " board = " << BoardAddr << " length = " << Num);
  if (BoardAddr == kAllBoards) {
    std::fill_n(ParaPtr, Num, uint8_t{0});
    MCUC_LOG(kLogInfo,
             "================== BroadCast Read RecvCard para!!! Exit!!! ==================");
    return 0;
  }
  const LinkSource source = m_linkSource;
  const LinkWords links = source == nullptr ? LinkWords{} : source();
  MCUC_LOG(kLogInfo,
           "CardLink State :" << links.copper << " " << links.fiber1 << " " << links.fiber2);
  if (!IsLinked(links, PortAddr)) {
    MCUC_LOG(kLogInfo, "CardLink State Not link ! Port :" << PortAddr);
    return kNotLinked;
  }
  RECVCARD_MESG_T head = Head(kReadCode, RegStartAddr, PortAddr, BoardAddr, Num, DevType);
  head.checksum = FpgaSum(head, nullptr, 0);
  return ReadFPGAformRecvCard(kFpga, &head, PortAddr, ParaPtr);
}

int32_t DriverUtil::ReadCardPara(uint32_t RegStartAddr, uint16_t PortAddr, uint16_t Num,
                                 uint8_t* ParaPtr, uint8_t DevType) {
  MCUC_LOG(kLogInfo, "ReadCardPara addr=" << CTrace::hex << RegStartAddr);
  return ReadCardPara(RegStartAddr, PortAddr, 0, Num, ParaPtr, DevType);
}

int32_t DriverUtil::SendCardPara(uint32_t RegStartAddr, uint8_t PortAddr, uint16_t BoardAddr,
                                 uint16_t Num, const uint8_t* ParaPtr, uint8_t DevType) {
  const uint8_t first = Num > 0 ? ParaPtr[0] : 0;
  MCUC_LOG(kLogInfo, "SendCardPara: Address = " << CTrace::hex << RegStartAddr << " port = "
                                                << PortAddr << " board = " << BoardAddr
                                                << " length = " << Num << " data[0]:" << first);
  RECVCARD_MESG_T head = Head(kWriteCode, RegStartAddr, PortAddr, BoardAddr, Num, DevType);
  head.checksum = FpgaSum(head, ParaPtr, Num);
  return WriteFPGAToRecvCard(kFpga, &head, PortAddr, ParaPtr);
}

int32_t DriverUtil::SendCardPara(uint32_t RegStartAddr, uint16_t Num, const uint8_t* RecPara,
                                 uint8_t DevType) {
  // Nobody answers a broadcast, so there is no result to give.
  static_cast<void>(SendCardPara(RegStartAddr, kAllPorts, kAllBoards, Num, RecPara, DevType));
  return 0;
}

}  // namespace ZEPH_MCUC
