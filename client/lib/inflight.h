// The requests that wait for their reply, by tag and by deadline. Not safe from several threads by
// itself.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>
#include <vector>

#include "quivord/client.h"
#include "socket.h"
#include "stub/frame_layout.h"

namespace quivord {

class InFlight {
 public:
  // Takes a request in and returns its tag: 1 up, none that is still in use. Its data is not kept.
  std::uint32_t Add(const Request& request, Clock::time_point deadline,
                    Client::Completion completion);

  // Takes the request with `tag` out and gives its completion; null where there is none, or where
  // `head` does not answer it (it then stays).
  Client::Completion Take(std::uint32_t tag);
  Client::Completion TakeAnswered(std::uint32_t tag, const ZEPH_MCUC::FrameHead& head);

  // Takes out what is due at `now`, or everything.
  std::vector<Client::Completion> TakeDue(Clock::time_point now);
  std::vector<Client::Completion> TakeAll() { return TakeDue(Clock::time_point::max()); }

  // The earliest deadline.
  std::optional<Clock::time_point> NextDeadline() const;

 private:
  struct Entry {
    Request request;  // without data: what tells its reply from others
    Clock::time_point deadline;
    Client::Completion completion;
  };

  std::uint32_t last_tag_ = 0;
  std::unordered_map<std::uint32_t, Entry> entries_;
  std::set<std::pair<Clock::time_point, std::uint32_t>> deadlines_;
};

}  // namespace quivord
