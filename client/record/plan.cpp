#include "record/plan.h"

#include <deque>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include "stub/frame_layout.h"

namespace quivord::record {
namespace {

using namespace ZEPH_MCUC;

// What an answer repeats of its request.
auto Repeated(const FrameHead& head) {
  return std::tuple(head.deviceType, head.portAddress, head.boardAddress, head.code,
                    head.registerAddress);
}

using Waiting = std::map<std::uint32_t, std::deque<std::size_t>>;  // requests by peer, oldest first

Step StepFromDaemon(const Recording& recording, std::size_t frame, Waiting& waiting) {
  const Frame& arrived = recording.frames[frame];
  const auto head = ReadFrameHead(arrived.bytes);
  auto& requests = waiting[arrived.peer];
  for (auto request = requests.begin(); head.has_value() && request != requests.end(); ++request) {
    const auto asked = ReadFrameHead(recording.frames[*request].bytes);
    if (head->tag != PROTOCOL_HEADER_TAG_RESPONSE || Repeated(*asked) != Repeated(*head)) continue;
    const Step step{Step::Kind::kAnswer, frame, *request, false};
    requests.erase(request);
    return step;
  }
  return {Step::Kind::kReport, frame, 0, false};
}

// The reads that their peer repeats before anybody writes.
std::set<std::size_t> PassingReads(const Recording& recording) {
  std::set<std::size_t> passing;
  std::set<std::pair<std::uint32_t, Bytes>> later;
  for (std::size_t at = recording.frames.size(); at-- > 0;) {
    const Frame& frame = recording.frames[at];
    if (!frame.towards_daemon) continue;
    if (!IsRead(frame.bytes)) {
      later.clear();
    } else if (!later.emplace(frame.peer, frame.bytes).second) {
      passing.insert(at);
    }
  }
  return passing;
}

}  // namespace

bool IsRead(const Bytes& bytes) {
  const auto head = ReadFrameHead(bytes);
  return head.has_value() && head->code == JSHL_PROTOREAD;
}

std::vector<Step> PlanOf(const Recording& recording) {
  const auto passing = PassingReads(recording);
  std::vector<Step> steps;
  Waiting waiting;
  for (std::size_t at = 0; at < recording.frames.size(); ++at) {
    const Frame& frame = recording.frames[at];
    if (!frame.towards_daemon) {
      steps.push_back(StepFromDaemon(recording, at, waiting));
      steps.back().passing =
          steps.back().kind == Step::Kind::kAnswer && passing.contains(steps.back().request);
      continue;
    }
    if (ReadFrameHead(frame.bytes).has_value()) waiting[frame.peer].push_back(at);
    steps.push_back({Step::Kind::kRequest, at, 0, false});
  }
  return steps;
}

}  // namespace quivord::record
