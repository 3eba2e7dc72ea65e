// The frame of the third protocol and the bus envelope around it, byte by byte: offsets, numbers,
// the checksum and the readers and writers of fields. Pure; clients and tools use it too.
#pragma once

#include <cstdint>
#include <cstring>

namespace ZEPH_MCUC {

// Result of a register operation, and the ack of a reply.
enum JSHL_Type_e : int32_t {
  JSHL_TYPE_NG = -1,
  JSHL_OK = 0,
  JSHL_Timeout = 1,
  JSHL_CRCERR_Request = 2,
  JSHL_CRCERR_Reply = 3,
  JSHL_invalidCMD = 4,
  JSHL_invalidAddrLen = 5,
  JSHL_invalidLenMaxMin = 6,
  JSHL_invalidTypeErr = 7,
};

// The operation of a frame, `m_ucCode`.
enum JSHL_ProtoRequestType_e : uint8_t { JSHL_PROTOREAD = 0, JSHL_PROTOWRITE = 1 };

// The kind of device that a frame is for, `m_ucDeviceType`.
enum JSHL_ProtoDeviceType_e : uint8_t {
  JSHL_TypeSender = 0,
  JSHL_TypeReceiver = 1,
  JSHL_TypeMultiFunc = 2,
  JSHL_TypeDistribute = 3,
  JSHL_TypeLauncher3D = 4,
};

// Tags as the first two bytes on the wire. A request's tag is read low byte first and written high
// byte first, which turns a decoded request into a reply without anyone touching the field.
inline constexpr uint16_t PROTOCOL_HEADER_TAG_REQUEST = 0x55AA;
inline constexpr uint16_t PROTOCOL_HEADER_TAG_RESPONSE = 0xAA55;

inline constexpr int32_t TP_RECV_BUFFER_LENGTH = 65536;
inline constexpr int32_t TP_SEND_BUFFER_LENGTH = 65536;
inline constexpr int32_t GENERAL_RECV_BUFFER_LENGTH = 65536;
inline constexpr int32_t DATA_BLOCK_LENGTH = 65536;
inline constexpr int32_t PROCESS_DATA_BLOCK_LENGTH = 65535;

// Offsets of the frame's fields. Values of more than one byte are little-endian, the tag aside.
namespace frame {
inline constexpr int32_t kTag = 0;
inline constexpr int32_t kAck = 2;
inline constexpr int32_t kLabels = 3;
inline constexpr int32_t kSourceAddress = 4;
inline constexpr int32_t kDestinationAddress = 5;
inline constexpr int32_t kDeviceType = 6;
inline constexpr int32_t kPortAddress = 7;
inline constexpr int32_t kBoardAddress = 8;
inline constexpr int32_t kCode = 10;
inline constexpr int32_t kReserved = 11;
inline constexpr int32_t kRegister = 12;
inline constexpr int32_t kDataLength = 16;
inline constexpr int32_t kData = 18;
inline constexpr int32_t kChecksumSize = 2;
inline constexpr int32_t kShortest = kData + kChecksumSize;              // 20
inline constexpr int32_t kMostData = TP_SEND_BUFFER_LENGTH - kShortest;  // 65516
inline constexpr uint8_t kEchoWrittenData = 0xFF;  // in the reserved byte: a write's reply has data
}  // namespace frame

// A 16-bit value from its high and low byte, a 32-bit one from its four bytes, highest first.
constexpr uint16_t DWQ_MAKEWD(uint8_t hi, uint8_t lo) {
  return static_cast<uint16_t>(hi * 256 + lo);
}
constexpr uint32_t DWQ_MAKEDW(uint8_t b3, uint8_t b2, uint8_t b1, uint8_t b0) {
  return static_cast<uint32_t>(DWQ_MAKEWD(b3, b2)) << 16 | DWQ_MAKEWD(b1, b0);
}

// Store `w` or `d` at `p`: little-endian, big-endian (the tag alone), little-endian.
constexpr void DWQ_ENCWD(uint8_t* p, uint16_t w) {
  p[0] = static_cast<uint8_t>(w);
  p[1] = static_cast<uint8_t>(w >> 8);
}
constexpr void DWQ_RENCWD(uint8_t* p, uint16_t w) {
  p[0] = static_cast<uint8_t>(w >> 8);
  p[1] = static_cast<uint8_t>(w);
}
constexpr void DWQ_ENCDW(uint8_t* p, uint32_t d) {
  DWQ_ENCWD(p, static_cast<uint16_t>(d));
  DWQ_ENCWD(p + 2, static_cast<uint16_t>(d >> 16));
}

// Little-endian values at `p`, the opposite of `DWQ_ENCWD` and `DWQ_ENCDW`.
constexpr uint16_t DWQ_DECWD(const uint8_t* p) { return DWQ_MAKEWD(p[1], p[0]); }
constexpr uint32_t DWQ_DECDW(const uint8_t* p) { return DWQ_MAKEDW(p[3], p[2], p[1], p[0]); }

// The frame's sum over `count` bytes from `p`: 16 bits, starting from 0x5555, wrapping.
uint16_t FrameSum(const uint8_t* p, int32_t count);

// Whether a frame of `length` bytes is at least the shortest one and bears the right sum.
bool FrameSumIsRight(const uint8_t* p, int32_t length);

// The bus envelope in front of a frame: head and label, 28 bytes, in the machine's own byte order.
struct Fipc_msg_head {
  uint32_t ui_id = 0;  // received: the sending peer; sent: the peer to deliver to
  int32_t lbl_cnt = 0;
  int32_t size = 0;
  int32_t result = 0;
  int32_t detail = 0;
};
using ihead_t = Fipc_msg_head;
static_assert(sizeof(ihead_t) == 20);

struct Fcode_dtl {
  uint16_t small = 0;
  uint16_t large = 0;
};

struct Fqmb_label {
  Fcode_dtl label;
  int32_t size = 0;  // frame bytes that follow
};
using Flabel_t = Fqmb_label;
static_assert(sizeof(Flabel_t) == 8);

// The same 28 bytes as one record.
struct ipcHeaderInfo {
  uint32_t uiid = 0;        // received: the sending peer; sent: the peer to deliver to
  uint32_t labelCount = 0;  // copied from request to reply
  uint32_t size = 0;        // copied from request to reply
  uint32_t result = 0;      // sent: the frame's ack
  uint32_t detail = 0;      // copied from request to reply; a client's tag
  uint16_t smallLabel = 0;
  uint16_t largeLabel = 0;
  uint32_t payloadLength = 0;  // frame bytes that follow
};
inline constexpr int32_t kEnvelopeSize = 28;
static_assert(sizeof(ipcHeaderInfo) == kEnvelopeSize);

// Large labels: the kinds of message on the bus. This daemon's are LABEL_MSG; the others are other
// tasks' business.
enum LargeLabel : uint16_t {
  LABEL_CONFIG_INFO = 1,
  LABEL_TERMINAL,
  LABEL_IP,
  LABEL_SYSLOG,
  LABEL_SNMP,
  LABEL_FTC,
  LABEL_UPDATE,
  LABEL_DNS,
  LABEL_SESSION,
  LABEL_DATE,
  LABEL_USR,
  LABEL_ROUTE,
  LABEL_NTP,
  LABEL_TZONE,
  LABEL_SYSTEM,
  LABEL_HOSTMNG,
  LABEL_WRITE = 18,
  LABEL_COMMIT,
  LABEL_CARD_INFO,
  LABEL_PORT,
  LABEL_EVENT,
  LABEL_BACKUP,
  LABEL_RESTORE,
  LABEL_DEVICE,
  LABEL_DHCP,
  LABEL_LOCK,
  LABEL_MSG,
  LABEL_UDISK,
  LABEL_WIN,
  LABEL_PVW_PGM,
  LABEL_APU,
  LLABEL_MAX,
};
static_assert(LABEL_MSG == 28 && LLABEL_MAX == 33);

// Small labels under LABEL_MSG.
enum SmallLabel : uint16_t {
  LABEL_MSG_LOCAL,
  LABEL_MSG_NET,
  LABEL_MSG_CCID,
  LABEL_MSG_IO,
  LABEL_MSG_TTY,
  LABEL_MSG_MAX,
};

inline ipcHeaderInfo ReadEnvelope(const uint8_t* p) {
  ipcHeaderInfo info;
  std::memcpy(&info, p, kEnvelopeSize);
  return info;
}
inline void WriteEnvelope(const ipcHeaderInfo& info, uint8_t* p) {
  std::memcpy(p, &info, kEnvelopeSize);
}

// Numbers of the tasks on the bus, without the slot in the top byte.
namespace task {
inline constexpr uint32_t kQmb = 0x070400;      // the dispatching task, destination of every send
inline constexpr uint32_t kQuivord = 0x0A4200;  // this daemon
inline constexpr uint32_t kOwd = 0x0A3900;      // the service daemon; gets the status reports
inline constexpr uint32_t kKye = 0x0A3700;      // the video processing application
inline constexpr uint32_t kMoirad = 0x0A3A00;   // the video daemon
}  // namespace task

constexpr uint32_t TaskId(uint8_t slot, uint32_t number) {
  return static_cast<uint32_t>(slot) << 24 | number;
}

}  // namespace ZEPH_MCUC
