// What differs between a frame of the daemon as it was recorded and as it comes now. Pure; any
// thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "record/recording.h"

namespace quivord::record {

// Registers of the sending card that need not be the same, and why.
struct MayDiffer {
  std::uint32_t begin;  // first address
  std::uint32_t bytes;
  std::string why;
};

// What no replay can repeat: the device's clock.
std::vector<MayDiffer> UsuallyDiffer();

// One place in which two frames differ.
struct Place {
  std::string where;  // "0x020001DE output", or a part of the frame: "ack"
  std::string recorded;
  std::string now;
  std::string why;  // why that is allowed; empty where it isn't

  bool operator==(const Place&) const = default;
};

// The places in their order in the frame; none where the frames say the same.
std::vector<Place> Differences(const Bytes& recorded, const Bytes& now,
                               const std::vector<MayDiffer>& may_differ);

bool AllAllowed(const std::vector<Place>& places);

// What a replay has to tell about one request or report.
struct Finding {
  enum class Kind : std::uint8_t { kAnswer, kNoAnswer, kMissingReport, kNewReport };
  Kind kind = Kind::kAnswer;
  std::int64_t at_us = 0;  // in the recording; of a new report, since the replay's beginning
  std::uint32_t peer = 0;
  Bytes request;              // empty for reports
  std::vector<Place> places;  // of kAnswer, and of a new report that may come
  Bytes report;               // of the last two kinds

  bool allowed() const { return !places.empty() && AllAllowed(places); }
};

// The reports that came in place of those that were recorded, in whatever order: what is missing,
// then what is new. What is told once more may be new.
std::vector<Finding> CompareReports(const std::vector<Frame>& recorded,
                                    const std::vector<Frame>& now,
                                    const std::vector<MayDiffer>& may_differ);

}  // namespace quivord::record
