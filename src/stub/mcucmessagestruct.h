// A frame of the third protocol as an object, and the message that carries it through the daemon.
#pragma once

#include <cstdint>
#include <vector>

#include "stub/mcucmessagestruct_layout.h"

namespace ZEPH_MCUC {

// Codes of the thread and bus layers, 32 bits.
inline constexpr int32_t kGeneralFailure = static_cast<int32_t>(0x80005001);
inline constexpr int32_t kInvalidMessage = static_cast<int32_t>(0x80005004);
inline constexpr int32_t kSendFailed = static_cast<int32_t>(0x80005036);
inline constexpr int32_t kEncodeFailed = static_cast<int32_t>(0x8000503A);

// The frame's fields in the order of the wire. Used by one thread at a time.
class MCUCMsg {
 public:
  MCUCMsg() = default;
  MCUCMsg(uint16_t header, uint8_t ack, uint8_t labels, uint8_t sourceAddress,
          uint8_t destinationAddress, uint8_t deviceType, uint8_t portAddress,
          uint16_t boardAddress, uint8_t code, uint32_t registerAddress);
  MCUCMsg(const MCUCMsg&) = default;
  MCUCMsg& operator=(const MCUCMsg&) = default;
  virtual ~MCUCMsg() = default;

  // To and from bytes; a class that has no form of its own answers with a general failure.
  virtual int32_t Encode(uint8_t* buffer, uint32_t size);
  virtual int32_t Decode(uint8_t* buffer, int32_t& size);

  // The sum over `count` bytes from `start`, into `out`.
  static void CaculCheckout(const uint8_t* p, int32_t start, int32_t count, uint16_t* out);

  // Whether a received frame of `length` bytes bears the right sum; a short one does not.
  static bool Checkout(const uint8_t* p, int32_t length);

  // Writes the first 18 bytes. 0, or -1 for a null buffer or one too small.
  int32_t EncodeHeader(uint8_t* p, int32_t size);

  // Reads all fields but the data from a frame of `length` bytes. 0, or -1 where it is too short.
  int32_t DecodeHeader(const uint8_t* p, int32_t length);

  uint16_t m_usHeader = 0;
  uint8_t m_ucAck = 0;  // a JSHL_Type_e
  uint8_t m_ucLabels = 0;
  uint8_t m_ucSourceAddress = 0;
  uint8_t m_ucDestinationAddrerss = 0;
  uint8_t m_ucDeviceType = 0;  // a JSHL_ProtoDeviceType_e
  uint8_t m_ucPortAddress = 0;
  uint16_t m_usBoardAddress = 0;
  uint8_t m_ucCode = 0;  // a JSHL_ProtoRequestType_e
  uint8_t m_ucReserved = 0;
  uint32_t m_uiRegisterUnitAddress = 0;
  uint16_t m_usValidDataLength = 0;  // read: bytes asked for; write or reply: bytes carried
  std::vector<uint8_t> m_data;
  uint16_t m_usCheckout = 0;
};

// The frame as it crosses the bus.
class ThirdProtoMCUCMsg : public MCUCMsg {
 public:
  using MCUCMsg::MCUCMsg;
  ThirdProtoMCUCMsg() = default;
  ThirdProtoMCUCMsg(const ThirdProtoMCUCMsg&) = default;
  ThirdProtoMCUCMsg& operator=(const ThirdProtoMCUCMsg&) = default;
  ~ThirdProtoMCUCMsg() override = default;

  // Writes the whole frame: header, data where the frame carries any, sum. `m_usValidDataLength`
  // and `m_usCheckout` take what was written. Returns the number of bytes, or -1 where `buffer` is
  // null or `size` bytes don't hold the frame.
  int32_t Encode(uint8_t* buffer, uint32_t size) override;

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Woverloaded-virtual"
  // Reads a whole frame of `length` bytes; the sum is not checked. 0, or -1 where it is too short.
  // A write whose length field promises more than was received gets the bytes that are there, so
  // `m_data` is then shorter than `m_usValidDataLength`.
  int32_t Decode(const uint8_t* buffer, int32_t length);
#pragma GCC diagnostic pop

  // Whether this is a write that carries fewer bytes than its length field says.
  bool DataFallsShort() const;
};

// One request, or a message that the daemon originates.
struct QMB_proto3rd {
  ThirdProtoMCUCMsg proto;
  int32_t seqNum = 0;      // -1 in messages that the daemon originates
  uint32_t processID = 0;  // destination of a message that the daemon originates
  uint32_t SyncWrite = 0;
  ipcHeaderInfo ipcHeader;
};

}  // namespace ZEPH_MCUC
