#include "packet.h"

namespace quivord {
namespace {

namespace bus = ZEPH_MCUC;

bus::FrameHead HeadOf(const Request& request) {
  const bool write = request.operation == Operation::kWrite;
  return {
      .deviceType = request.target.device,
      .portAddress = request.target.port,
      .boardAddress = request.target.board,
      .code = static_cast<std::uint8_t>(request.operation),
      .registerAddress = request.address,
      .dataLength = write ? static_cast<std::uint16_t>(request.data.size()) : request.length,
  };
}

}  // namespace

Result<std::vector<std::uint8_t>> RequestPacket(const Request& request, std::uint32_t tag,
                                                std::uint32_t id) {
  const bool write = request.operation == Operation::kWrite;
  const std::size_t length = write ? request.data.size() : request.length;
  if (length > static_cast<std::size_t>(bus::frame::kMostData)) {
    return Error{Trouble::kWrongUse, "a request moves at most 65516 bytes"};
  }
  if (!write && !request.data.empty()) {
    return Error{Trouble::kWrongUse, "a read carries no data"};
  }
  const std::span<const std::uint8_t> data(request.data);
  const std::int32_t size = bus::FrameSize(static_cast<std::int32_t>(data.size()));
  std::vector<std::uint8_t> packet(static_cast<std::size_t>(bus::kEnvelopeSize + size));
  bus::WriteEnvelope({.uiid = id,
                      .detail = tag,
                      .smallLabel = bus::LABEL_MSG_LOCAL,
                      .largeLabel = bus::LABEL_MSG,
                      .payloadLength = static_cast<std::uint32_t>(size)},
                     packet.data());
  bus::WriteFrame(HeadOf(request), data, packet.data() + bus::kEnvelopeSize);
  return packet;
}

void SetTag(std::uint32_t tag, std::span<std::uint8_t> packet) {
  bus::ipcHeaderInfo envelope = bus::ReadEnvelope(packet.data());
  envelope.detail = tag;
  bus::WriteEnvelope(envelope, packet.data());
}

Arrival ReadPacket(std::span<const std::uint8_t> packet) {
  if (packet.size() < bus::kEnvelopeSize) return {};
  const bus::ipcHeaderInfo envelope = bus::ReadEnvelope(packet.data());
  const auto frame = packet.subspan(bus::kEnvelopeSize);
  if (envelope.largeLabel != bus::LABEL_MSG || envelope.payloadLength != frame.size()) return {};

  const auto head = bus::ReadFrameHead(frame);
  if (!head.has_value()) return {};
  const bool whole = bus::FrameSumIsRight(frame.data(), static_cast<std::int32_t>(frame.size()));
  Arrival arrival{.tag = envelope.detail, .head = *head, .data = bus::FrameData(*head, frame)};
  if (envelope.detail != 0) {
    arrival.kind = whole ? Arrival::Kind::kReply : Arrival::Kind::kBrokenReply;
  } else if (whole) {
    arrival.kind = Arrival::Kind::kReport;
  }
  return arrival;
}

bool Answers(const bus::FrameHead& head, const Request& request) {
  const bus::FrameHead asked = HeadOf(request);
  return head.registerAddress == asked.registerAddress && head.code == asked.code &&
         head.deviceType == asked.deviceType && head.portAddress == asked.portAddress &&
         head.boardAddress == asked.boardAddress;
}

}  // namespace quivord
