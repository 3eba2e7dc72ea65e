#include "live/state.h"

namespace quivord::live {

Json Document(const State& state) {
  Json document = Json::object();
  const auto names = SectionNames();
  for (std::size_t i = 0; i < kSections; ++i) {
    if (state[i] != nullptr) document[names[i]] = *state[i];
  }
  return document;
}

Json Difference(const Json& before, const Json& after) {
  Json patch = Json::object();
  for (const auto& [key, value] : after.items()) {
    const auto old = before.find(key);
    if (old == before.end()) {
      patch[key] = value;
    } else if (*old != value) {
      patch[key] = old->is_object() && value.is_object() ? Difference(*old, value) : value;
    }
  }
  for (const auto& [key, value] : before.items()) {
    if (!after.contains(key)) patch[key] = nullptr;
  }
  return patch;
}

Json Difference(const State& before, const State& after) {
  State changed_before;
  State changed_after;
  for (std::size_t i = 0; i < kSections; ++i) {
    if (before[i] == after[i]) continue;
    changed_before[i] = before[i];
    changed_after[i] = after[i];
  }
  return Difference(Document(changed_before), Document(changed_after));
}

}  // namespace quivord::live
