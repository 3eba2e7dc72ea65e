// The fixed-point arithmetic that both splits share. Pure.
#pragma once

#include <algorithm>

#include "process/scaler_split_porting_code.h"

namespace ZEPH_MCUC::split {

inline constexpr unsigned kPhaseBits = 16;

// Whether these sizes are there and fit the arithmetic.
constexpr bool Holds(unsigned a, unsigned b, unsigned c) {
  const auto fits = [](unsigned size) { return size != 0 && size <= kMostSplitSize; };
  return fits(a) && fits(b) && fits(c);
}

// The step for `in` pixels, 1 to 65535, onto `out` pixels, 2 to 65535.
constexpr unsigned Step(unsigned in, unsigned out) { return ((in - 1) << kPhaseBits) / (out - 1); }

// Where output pixels lie in the input.
struct Axis {
  unsigned step;

  unsigned Position(unsigned k) const { return (step * k) >> kPhaseBits; }
  unsigned Fraction(unsigned k) const { return (step * k) & 0xFFFF; }
  // The output pixel at input position `n`; not for a step of 0.
  unsigned OutputAt(unsigned n) const { return (n << kPhaseBits) / step; }
};

// A run of input with the phase that its first output pixel has in it.
struct Run {
  unsigned start;
  unsigned size;
  unsigned phase;
};

// `size` lowered to what the source holds from `start` on.
constexpr unsigned Clamp(unsigned size, unsigned start, unsigned source) {
  return size + start > source ? source - start : size;
}

// Filter reach left and right of a sample.
struct Reach {
  unsigned left;
  unsigned right;
};

// The run for a first sample at position `p` with fraction `f` and a last one at `last`, in the
// middle of the source and at its right edge.
constexpr Run MiddleRun(const Reach& reach, unsigned p, unsigned f, unsigned last) {
  return {p - reach.left, reach.left + last - p + reach.right + 1, (reach.left << kPhaseBits) + f};
}
constexpr Run RightRun(const Reach& reach, unsigned source, unsigned p, unsigned f, unsigned last) {
  const unsigned start = source - reach.right - reach.left - 1;
  return {start, reach.left + last - p + reach.right + 1, ((p - start) << kPhaseBits) + f};
}

}  // namespace ZEPH_MCUC::split
