#include "record/compare.h"

#include <algorithm>
#include <span>
#include <utility>

#include "proto/calc_feature.h"
#include "proto/calc_feature_words.h"
#include "quivord/messages.h"
#include "stub/frame_layout.h"
#include "trace/subject.h"

namespace quivord::record {
namespace {

using namespace ZEPH_MCUC;
using View = std::span<const std::uint8_t>;

constexpr std::uint32_t kCells = 0xF0000000;
constexpr std::uint32_t kClockBytes = 6;
constexpr std::size_t kMostShown = 16;  // bytes of a stretch

std::string Hex(View bytes) {
  if (bytes.empty()) return "nothing";
  const std::string words = trace::HexWords(bytes.first(std::min(bytes.size(), kMostShown)));
  return words.substr(1) + (bytes.size() > kMostShown ? " ..." : "");
}

std::string WhyAllowed(const FrameHead& head, std::uint32_t address,
                       const std::vector<MayDiffer>& may_differ) {
  if (head.deviceType != JSHL_TypeSender) return "";
  for (const MayDiffer& row : may_differ) {
    if (address - row.begin < row.bytes) return row.why;
  }
  return "";
}

// The bytes from `at` on that make one place: those of a named register, else those that differ in
// a row for the same reason.
struct Stretch {
  std::size_t begin;
  std::size_t end;
  const FeatureRegister* row;  // null unless all of the register is there
};

Stretch StretchAt(const FrameHead& head, View recorded, View now, std::size_t at,
                  const std::vector<MayDiffer>& may_differ) {
  const std::size_t size = std::min(recorded.size(), now.size());
  const auto named = [&](std::size_t byte) {
    FrameHead there = head;
    there.registerAddress += static_cast<std::uint32_t>(byte);
    return trace::FeatureOf(there);
  };
  const auto why = [&](std::size_t byte) {
    return WhyAllowed(head, head.registerAddress + static_cast<std::uint32_t>(byte), may_differ);
  };
  const FeatureRegister* row = named(at);
  if (row != nullptr) {
    const std::uint32_t offset = (head.registerAddress + at) & (feature::kSize - 1);
    const std::size_t behind = offset - row->offset;  // bytes of the register in front of this one
    if (behind <= at && at - behind + row->width <= size) {
      return {at - behind, at - behind + row->width, row};
    }
  }
  std::size_t end = at + 1;
  while (end < size && recorded[end] != now[end] && named(end) == row && why(end) == why(at)) ++end;
  return {at, end, nullptr};
}

// In words where those tell them apart.
std::pair<std::string, std::string> Values(const Stretch& stretch, View recorded, View now) {
  const auto part = [&](View data) {
    return data.subspan(stretch.begin, stretch.end - stretch.begin);
  };
  if (stretch.row != nullptr) {
    std::string before = FeatureText(*stretch.row, part(recorded));
    std::string after = FeatureText(*stretch.row, part(now));
    if (before != after) return {std::move(before), std::move(after)};
  }
  return {Hex(part(recorded)), Hex(part(now))};
}

void CompareData(const FrameHead& head, View recorded, View now,
                 const std::vector<MayDiffer>& may_differ, std::vector<Place>& places) {
  if (recorded.size() != now.size()) {
    places.push_back(
        {"data length", std::to_string(recorded.size()), std::to_string(now.size()), ""});
  }
  for (std::size_t at = 0; at < std::min(recorded.size(), now.size());) {
    if (recorded[at] == now[at]) {
      ++at;
      continue;
    }
    const Stretch stretch = StretchAt(head, recorded, now, at, may_differ);
    FrameHead there = head;
    there.registerAddress += static_cast<std::uint32_t>(stretch.begin);
    auto [before, after] = Values(stretch, recorded, now);
    places.push_back({trace::PlaceText(there), std::move(before), std::move(after),
                      WhyAllowed(head, there.registerAddress, may_differ)});
    at = stretch.end;
  }
}

// The head without what is compared by itself.
Bytes RestOfHead(const Bytes& frame) {
  Bytes head(frame.begin(), frame.begin() + frame::kDataLength);
  head[frame::kAck] = 0;
  return head;
}

std::string AckWords(std::uint8_t ack) {
  return std::to_string(ack) + " (" + std::string(AckText(ack)) + ")";
}

// Work that takes turns with writes tells what came of it as often as it got a turn.
const Place kToldAgain{"a report", "once", "again", "told more than once"};

const char* SumWords(const Bytes& frame) {
  return FrameSumIsRight(frame.data(), static_cast<std::int32_t>(frame.size())) ? "right" : "wrong";
}

Finding ReportFinding(Finding::Kind kind, const Frame& report) {
  return {.kind = kind,
          .at_us = report.at_us,
          .peer = report.peer,
          .request = {},
          .places = {},
          .report = report.bytes};
}

// Whether a report of the recording says the same to the same peer.
bool Tells(const std::vector<Frame>& recorded, const Frame& report,
           const std::vector<MayDiffer>& may_differ) {
  return std::any_of(recorded.begin(), recorded.end(), [&](const Frame& one) {
    return one.peer == report.peer && AllAllowed(Differences(one.bytes, report.bytes, may_differ));
  });
}

}  // namespace

std::vector<MayDiffer> UsuallyDiffer() {
  return {{feature::kBase + feature::kClock, kClockBytes, "the device's clock"},
          {kCells + feature::kClock, kClockBytes, "the device's clock"}};
}

std::vector<Place> Differences(const Bytes& recorded, const Bytes& now,
                               const std::vector<MayDiffer>& may_differ) {
  if (recorded == now) return {};
  const auto before = ReadFrameHead(recorded);
  const auto after = ReadFrameHead(now);
  if (!before.has_value() || !after.has_value()) {
    return {{"frame", Hex(recorded), Hex(now), ""}};
  }
  std::vector<Place> places;
  if (before->ack != after->ack) {
    places.push_back({"ack", AckWords(before->ack), AckWords(after->ack), ""});
  }
  if (RestOfHead(recorded) != RestOfHead(now)) {
    places.push_back({"head", Hex(RestOfHead(recorded)), Hex(RestOfHead(now)), ""});
  }
  CompareData(*before, FrameData(*before, recorded), FrameData(*after, now), may_differ, places);
  const std::string sum = SumWords(recorded);
  if (sum != SumWords(now)) places.push_back({"checksum", sum, SumWords(now), ""});
  return places;
}

bool AllAllowed(const std::vector<Place>& places) {
  return std::all_of(places.begin(), places.end(),
                     [](const Place& place) { return !place.why.empty(); });
}

std::vector<Finding> CompareReports(const std::vector<Frame>& recorded,
                                    const std::vector<Frame>& now,
                                    const std::vector<MayDiffer>& may_differ) {
  std::vector<Finding> findings;
  std::vector<bool> taken(now.size(), false);
  for (const Frame& report : recorded) {
    std::size_t at = 0;
    const auto fits = [&] {
      return !taken[at] && now[at].peer == report.peer &&
             AllAllowed(Differences(report.bytes, now[at].bytes, may_differ));
    };
    while (at < now.size() && !fits()) ++at;
    if (at < now.size()) {
      taken[at] = true;
    } else {
      findings.push_back(ReportFinding(Finding::Kind::kMissingReport, report));
    }
  }
  for (std::size_t at = 0; at < now.size(); ++at) {
    if (taken[at]) continue;
    findings.push_back(ReportFinding(Finding::Kind::kNewReport, now[at]));
    if (Tells(recorded, now[at], may_differ)) findings.back().places = {kToldAgain};
  }
  return findings;
}

}  // namespace quivord::record
