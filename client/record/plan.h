// What the frames of a recording are to each other: requests, their answers, reports. Pure; any
// thread.
#pragma once

#include <cstddef>
#include <vector>

#include "record/recording.h"

namespace quivord::record {

struct Step {
  enum class Kind : std::uint8_t {
    kRequest,  // a peer's frame, valid or not
    kAnswer,   // the daemon's, to `request`
    kReport,   // the daemon's that no request of its receiver explains
  };
  Kind kind = Kind::kRequest;
  std::size_t frame = 0;    // which frame of the recording this is
  std::size_t request = 0;  // of an answer: the frame that it answers

  // Of an answer: its peer asks the very same again, and nobody writes in between. Such a peer
  // waits for something, so how often it asks and what it hears until then is a matter of time.
  bool passing = false;

  bool operator==(const Step&) const = default;
};

// A step a frame, in their order. A recording doesn't say which request an answer belongs to: it is
// the oldest one of that peer for the same register that has none yet.
std::vector<Step> PlanOf(const Recording& recording);

// Whether the frame in `bytes` is a read, or a write, as far as it can be told.
bool IsRead(const Bytes& bytes);

}  // namespace quivord::record
