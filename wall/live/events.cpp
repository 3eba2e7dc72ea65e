#include "live/events.h"

namespace quivord::live {

std::string JsonText(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string EventText(const char* name, const Json& data) {
  return std::string("event: ") + name + "\ndata: " + JsonText(data) + "\n\n";
}

std::string EventStream::Next() {
  while (true) {
    const auto state = publisher_.Await(seen_, kSilence);
    if (state == nullptr) return publisher_.closed() ? "" : ": nothing has changed\n\n";
    const auto before = std::exchange(seen_, state);
    if (before == nullptr) {
      Json document = Document(*state);
      document.update(fixed_);
      return EventText("state", document);
    }
    const Json patch = Difference(*before, *state);
    if (!patch.empty()) return EventText("patch", patch);
  }
}

}  // namespace quivord::live
