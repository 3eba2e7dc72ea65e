// How often a test with random inputs runs: QUIVORD_TEST_ROUNDS says so, for a long run.
#pragma once

#include <cstdlib>
#include <random>

namespace support {

inline int Rounds(int usual) {
  const char* const wanted = std::getenv("QUIVORD_TEST_ROUNDS");
  return wanted == nullptr ? usual : std::atoi(wanted);
}

// Whole numbers from a seed, the same on every machine.
class Random {
 public:
  explicit Random(unsigned seed) : engine_(seed) {}
  // From `least` to `most`, both included.
  int operator()(int least, int most) {
    return least + static_cast<int>(engine_() % (static_cast<unsigned>(most - least) + 1));
  }
  bool Flip() { return (*this)(0, 1) == 1; }

 private:
  std::mt19937 engine_;
};

}  // namespace support
