// Warnings of the bus. A peer may cause them as fast as it sends, so they must never hold up a
// thread.
#pragma once

#include <bit>
#include <cstdint>

namespace board::mbus {

// One line on standard error, "board: bus: …"; left out when that is full or closed.
__attribute__((format(printf, 1, 2))) void Warn(const char* format, ...);

// Whether the `count`-th event of a kind is worth a line: the first, and then ever fewer.
constexpr bool WorthALine(std::uint64_t count) { return std::has_single_bit(count); }

}  // namespace board::mbus
