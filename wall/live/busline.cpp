#include "live/busline.h"

#include "trace/busline.h"

namespace quivord::live {

std::optional<BusLine> ReadBusLine(std::string_view line) {
  const auto read = trace::ReadBusLine(line);
  if (!read.has_value()) return std::nullopt;
  const auto head = ZEPH_MCUC::ReadFrameHead(read->frame);
  if (!head.has_value()) return std::nullopt;
  const auto data = ZEPH_MCUC::FrameData(*head, read->frame);
  return BusLine{read->at_us, read->towards_daemon, read->peer, *head, {data.begin(), data.end()}};
}

}  // namespace quivord::live
