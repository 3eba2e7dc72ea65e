// A frame's head as a record, and frames from and to bytes. Pure, safe from any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "stub/mcucmessagestruct_layout.h"

namespace ZEPH_MCUC {

// The fields of a frame in front of its data, in the order of the wire.
struct FrameHead {
  uint16_t tag = PROTOCOL_HEADER_TAG_REQUEST;  // as its two bytes on the wire, high byte first
  uint8_t ack = 0;
  uint8_t labels = 0;
  uint8_t sourceAddress = 0;
  uint8_t destinationAddress = 0;
  uint8_t deviceType = JSHL_TypeSender;
  uint8_t portAddress = 0;
  uint16_t boardAddress = 0;
  uint8_t code = JSHL_PROTOREAD;
  uint8_t reserved = 0;
  uint32_t registerAddress = 0;
  uint16_t dataLength = 0;  // a read: bytes asked for; else bytes that follow
};

// Bytes of a whole frame that carries `dataSize` bytes.
constexpr int32_t FrameSize(int32_t dataSize) { return frame::kShortest + dataSize; }

// Writes head, data and checksum to `p`, which has room for `FrameSize(data.size())` bytes; at most
// `frame::kMostData` bytes of data. `head.dataLength` goes out as it stands.
void WriteFrame(const FrameHead& head, std::span<const uint8_t> data, uint8_t* p);

// The head of the frame in `bytes`; nothing where they are fewer than the shortest frame has.
std::optional<FrameHead> ReadFrameHead(std::span<const uint8_t> bytes);

// The data between head and checksum, no more than the head's length says; `bytes` hold a frame.
std::span<const uint8_t> FrameData(const FrameHead& head, std::span<const uint8_t> bytes);

}  // namespace ZEPH_MCUC
