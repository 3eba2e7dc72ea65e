// A count with its noun, as all texts of the client have it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quivord {

// "1 cabinet", "12 cabinets": for nouns whose plural has an s.
inline std::string Counted(std::size_t count, std::string_view noun) {
  return std::to_string(count).append(" ").append(noun).append(count == 1 ? "" : "s");
}

}  // namespace quivord
