// What the page shows, as a document in sections, and what has changed between two of them. Pure;
// any thread.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>

namespace quivord::live {

using Json = nlohmann::json;

// Sections in the order of `SectionNames`. A section that hasn't changed is the very same object,
// so comparing two states costs nothing where nothing happens.
inline constexpr std::size_t kSections = 11;
using Section = std::shared_ptr<const Json>;
using State = std::array<Section, kSections>;

std::array<const char*, kSections> SectionNames();

// The whole document: an object with a member a section. Holds no null anywhere.
Json Document(const State& state);

// What turns `before` into `after`, as a JSON merge patch (RFC 7396): only what differs, null for
// what is gone. Empty where nothing differs.
Json Difference(const Json& before, const Json& after);
Json Difference(const State& before, const State& after);  // of states that have all sections

}  // namespace quivord::live
