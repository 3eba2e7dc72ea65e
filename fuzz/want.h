// What a fuzz target expects.
#pragma once

#include <cstdlib>

// Ends the program where `holds` is false; the fuzzer then keeps the input.
inline void Want(bool holds) {
  if (!holds) std::abort();
}
