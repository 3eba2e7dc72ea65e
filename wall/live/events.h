// The stream of one page: the whole state, then what changes. Used by one thread at a time.
#pragma once

#include <memory>
#include <string>

#include "live/publisher.h"

namespace quivord::live {

class EventStream {
 public:
  // How long nothing is sent while nothing changes; a page that has gone is noticed at the next
  // try.
  static constexpr std::chrono::seconds kSilence{5};

  // `fixed` are members of the document that never change.
  EventStream(Publisher& publisher, std::shared_ptr<Publisher::Seat> seat, Json fixed)
      : publisher_(publisher), seat_(std::move(seat)), fixed_(std::move(fixed)) {}

  // Waits for what is to be sent next. Empty once the publisher is closed.
  std::string Next();

 private:
  Publisher& publisher_;
  std::shared_ptr<Publisher::Seat> seat_;
  Json fixed_;
  std::shared_ptr<const State> seen_;
};

// An event as it goes over the wire.
std::string EventText(const char* name, const Json& data);

// JSON on one line; bytes that are no UTF-8 are replaced.
std::string JsonText(const Json& json);

}  // namespace quivord::live
