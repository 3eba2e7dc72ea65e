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
  Json patch = Json::object();
  const auto names = SectionNames();
  for (std::size_t i = 0; i < kSections; ++i) {
    if (before[i] == after[i] || after[i] == nullptr) continue;
    Json part = before[i] == nullptr ? *after[i] : Difference(*before[i], *after[i]);
    if (!part.empty()) patch[names[i]] = std::move(part);
  }
  return patch;
}

}  // namespace quivord::live
