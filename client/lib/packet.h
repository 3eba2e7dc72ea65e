// Requests as packets of the bus, and packets as what they mean to a client. Pure.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "quivord/messages.h"
#include "quivord/result.h"
#include "stub/frame_layout.h"

namespace quivord {

inline constexpr std::size_t kMostPacket =
    ZEPH_MCUC::kEnvelopeSize + ZEPH_MCUC::TP_SEND_BUFFER_LENGTH;

// The packet of `request` under `tag`, from task `id`; kWrongUse where it fits no frame.
Result<std::vector<std::uint8_t>> RequestPacket(const Request& request, std::uint32_t tag,
                                                std::uint32_t id);

// Puts another tag on a request's packet.
void SetTag(std::uint32_t tag, std::span<std::uint8_t> packet);

struct Arrival {
  enum class Kind : std::uint8_t {
    kGarbage,      // not a message that carries a frame
    kReport,       // a frame that nobody asked for
    kReply,        // the frame that answers the request with `tag`
    kBrokenReply,  // the same with a wrong checksum
  };
  Kind kind = Kind::kGarbage;
  std::uint32_t tag = 0;
  ZEPH_MCUC::FrameHead head = {};
  std::span<const std::uint8_t> data = {};  // inside the packet
};

Arrival ReadPacket(std::span<const std::uint8_t> packet);

// Whether a reply with this head answers `request`. The daemon repeats these fields, so one that
// differs belongs to a peer that had this identifier before.
bool Answers(const ZEPH_MCUC::FrameHead& head, const Request& request);

}  // namespace quivord
