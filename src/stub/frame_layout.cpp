#include "stub/frame_layout.h"

#include <algorithm>

namespace ZEPH_MCUC {

void WriteFrame(const FrameHead& head, std::span<const uint8_t> data, uint8_t* p) {
  DWQ_RENCWD(p + frame::kTag, head.tag);
  p[frame::kAck] = head.ack;
  p[frame::kLabels] = head.labels;
  p[frame::kSourceAddress] = head.sourceAddress;
  p[frame::kDestinationAddress] = head.destinationAddress;
  p[frame::kDeviceType] = head.deviceType;
  p[frame::kPortAddress] = head.portAddress;
  DWQ_ENCWD(p + frame::kBoardAddress, head.boardAddress);
  p[frame::kCode] = head.code;
  p[frame::kReserved] = head.reserved;
  DWQ_ENCDW(p + frame::kRegister, head.registerAddress);
  DWQ_ENCWD(p + frame::kDataLength, head.dataLength);
  std::copy(data.begin(), data.end(), p + frame::kData);
  const int32_t end = frame::kData + static_cast<int32_t>(data.size());
  DWQ_ENCWD(p + end, FrameSum(p + frame::kAck, end - frame::kAck));
}

std::optional<FrameHead> ReadFrameHead(std::span<const uint8_t> bytes) {
  if (bytes.size() < frame::kShortest) return std::nullopt;
  const uint8_t* const p = bytes.data();
  return FrameHead{
      .tag = DWQ_MAKEWD(p[frame::kTag], p[frame::kTag + 1]),
      .ack = p[frame::kAck],
      .labels = p[frame::kLabels],
      .sourceAddress = p[frame::kSourceAddress],
      .destinationAddress = p[frame::kDestinationAddress],
      .deviceType = p[frame::kDeviceType],
      .portAddress = p[frame::kPortAddress],
      .boardAddress = DWQ_DECWD(p + frame::kBoardAddress),
      .code = p[frame::kCode],
      .reserved = p[frame::kReserved],
      .registerAddress = DWQ_DECDW(p + frame::kRegister),
      .dataLength = DWQ_DECWD(p + frame::kDataLength),
  };
}

std::span<const uint8_t> FrameData(const FrameHead& head, std::span<const uint8_t> bytes) {
  const std::size_t carried = bytes.size() - frame::kShortest;
  return bytes.subspan(frame::kData, std::min<std::size_t>(head.dataLength, carried));
}

}  // namespace ZEPH_MCUC
