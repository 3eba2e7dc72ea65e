#include "inflight.h"

#include "packet.h"

namespace quivord {

std::uint32_t InFlight::Add(const Request& request, Clock::time_point deadline,
                            Client::Completion completion) {
  do {
    ++last_tag_;
  } while (last_tag_ == 0 || entries_.contains(last_tag_));
  Request asked{
      .operation = request.operation, .target = request.target, .address = request.address};
  entries_.emplace(last_tag_, Entry{std::move(asked), deadline, std::move(completion)});
  deadlines_.emplace(deadline, last_tag_);
  return last_tag_;
}

Client::Completion InFlight::Take(std::uint32_t tag) {
  const auto entry = entries_.find(tag);
  if (entry == entries_.end()) return nullptr;
  Client::Completion completion = std::move(entry->second.completion);
  deadlines_.erase({entry->second.deadline, tag});
  entries_.erase(entry);
  return completion;
}

Client::Completion InFlight::TakeAnswered(std::uint32_t tag, const ZEPH_MCUC::FrameHead& head) {
  const auto entry = entries_.find(tag);
  if (entry == entries_.end() || !Answers(head, entry->second.request)) return nullptr;
  return Take(tag);
}

std::vector<Client::Completion> InFlight::TakeDue(Clock::time_point now) {
  std::vector<Client::Completion> due;
  while (!deadlines_.empty() && deadlines_.begin()->first <= now) {
    due.push_back(Take(deadlines_.begin()->second));
  }
  return due;
}

std::optional<Clock::time_point> InFlight::NextDeadline() const {
  if (deadlines_.empty()) return std::nullopt;
  return deadlines_.begin()->first;
}

}  // namespace quivord
