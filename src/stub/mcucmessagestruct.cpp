#include "stub/mcucmessagestruct.h"

#include <algorithm>

#include "mcuctrace.h"

namespace ZEPH_MCUC {

MCUCMsg::MCUCMsg(uint16_t header, uint8_t ack, uint8_t labels, uint8_t sourceAddress,
                 uint8_t destinationAddress, uint8_t deviceType, uint8_t portAddress,
                 uint16_t boardAddress, uint8_t code, uint32_t registerAddress)
    : m_usHeader(header),
      m_ucAck(ack),
      m_ucLabels(labels),
      m_ucSourceAddress(sourceAddress),
      m_ucDestinationAddrerss(destinationAddress),
      m_ucDeviceType(deviceType),
      m_ucPortAddress(portAddress),
      m_usBoardAddress(boardAddress),
      m_ucCode(code),
      m_uiRegisterUnitAddress(registerAddress) {}

int32_t MCUCMsg::Encode(uint8_t* /*buffer*/, uint32_t /*size*/) { return kGeneralFailure; }

int32_t MCUCMsg::Decode(uint8_t* /*buffer*/, int32_t& /*size*/) { return kGeneralFailure; }

void MCUCMsg::CaculCheckout(const uint8_t* p, int32_t start, int32_t count, uint16_t* out) {
  *out = FrameSum(p + start, count);
}

bool MCUCMsg::Checkout(const uint8_t* p, int32_t length) { return FrameSumIsRight(p, length); }

int32_t MCUCMsg::EncodeHeader(uint8_t* p, int32_t size) {
  if (p == nullptr || size < frame::kData) {
    MCUC_LOG(kLogError, "=== EncodeHeader ===pData = " << static_cast<const void*>(p));
    return -1;
  }
  DWQ_RENCWD(p + frame::kTag, m_usHeader);
  p[frame::kAck] = m_ucAck;
  p[frame::kLabels] = m_ucLabels;
  p[frame::kSourceAddress] = m_ucSourceAddress;
  p[frame::kDestinationAddress] = m_ucDestinationAddrerss;
  p[frame::kDeviceType] = m_ucDeviceType;
  p[frame::kPortAddress] = m_ucPortAddress;
  DWQ_ENCWD(p + frame::kBoardAddress, m_usBoardAddress);
  p[frame::kCode] = m_ucCode;
  p[frame::kReserved] = m_ucReserved;
  DWQ_ENCDW(p + frame::kRegister, m_uiRegisterUnitAddress);
  DWQ_ENCWD(p + frame::kDataLength, m_usValidDataLength);
  return 0;
}

int32_t MCUCMsg::DecodeHeader(const uint8_t* p, int32_t length) {
  if (p == nullptr || length < frame::kShortest) {
    MCUC_LOG(kLogError,
             "=== DecodeHeader ===Decode Header: Decode Failed! return. The data length = "
                 << length << static_cast<const void*>(p));
    return -1;
  }
  m_usHeader = DWQ_DECWD(p + frame::kTag);
  m_ucAck = p[frame::kAck];
  m_ucLabels = p[frame::kLabels];
  m_ucSourceAddress = p[frame::kSourceAddress];
  m_ucDestinationAddrerss = p[frame::kDestinationAddress];
  m_ucDeviceType = p[frame::kDeviceType];
  m_ucPortAddress = p[frame::kPortAddress];
  m_usBoardAddress = DWQ_DECWD(p + frame::kBoardAddress);
  m_ucCode = p[frame::kCode];
  m_ucReserved = p[frame::kReserved];
  m_uiRegisterUnitAddress = DWQ_DECDW(p + frame::kRegister);
  m_usValidDataLength = DWQ_DECWD(p + frame::kDataLength);
  m_usCheckout = DWQ_DECWD(p + length - frame::kChecksumSize);
  return 0;
}

int32_t ThirdProtoMCUCMsg::Encode(uint8_t* buffer, uint32_t size) {
  const bool carries = m_ucCode != JSHL_PROTOWRITE || m_ucReserved == frame::kEchoWrittenData;
  const std::size_t length = carries ? m_data.size() : 0;
  if (length + frame::kShortest > size) {
    MCUC_LOG(kLogError, "=== EncodeHeader ===frame too long, data length = " << length);
    return -1;
  }
  m_usValidDataLength = static_cast<uint16_t>(length);
  if (const int32_t result = EncodeHeader(buffer, static_cast<int32_t>(size)); result != 0) {
    return result;
  }
  std::copy_n(m_data.begin(), length, buffer + frame::kData);
  const int32_t end = frame::kData + static_cast<int32_t>(length);
  CaculCheckout(buffer, frame::kAck, end - frame::kAck, &m_usCheckout);
  DWQ_ENCWD(buffer + end, m_usCheckout);
  return end + frame::kChecksumSize;
}

int32_t ThirdProtoMCUCMsg::Decode(const uint8_t* buffer, int32_t length) {
  if (const int32_t result = DecodeHeader(buffer, length); result != 0) return result;
  if (m_ucCode == JSHL_PROTOWRITE) {
    const int32_t received = length - frame::kShortest;
    const int32_t count = std::min<int32_t>(m_usValidDataLength, received);
    m_data.insert(m_data.end(), buffer + frame::kData, buffer + frame::kData + count);
  }
  return 0;
}

bool ThirdProtoMCUCMsg::DataFallsShort() const {
  return m_ucCode == JSHL_PROTOWRITE && m_data.size() < m_usValidDataLength;
}

}  // namespace ZEPH_MCUC
