// What programs on top of quivord rely on: the JSON that quivordctl prints, its exit statuses, and
// the calls of the Python module. docs/json.md says what may change without a new version.
#pragma once

namespace quivord {

// Raised by one when something that was there is renamed, removed or means something else; what
// joins leaves it as it is.
inline constexpr int kInterfaceVersion = 1;

}  // namespace quivord
