// Counts what the threads of this process take from the heap.
#pragma once

#include <cstdint>
#include <string_view>

namespace bench {

// How often the threads of this name have called `operator new` so far. A thread's first call makes
// it known; at most 64 threads are.
std::uint64_t AllocationsOf(std::string_view thread);

// How often the calling thread has. Takes nothing from the heap itself.
std::uint64_t OwnAllocations();

}  // namespace bench
