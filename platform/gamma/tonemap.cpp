#include "gamma/tonemap.h"

#include <algorithm>
#include <cmath>

#include "proto/calc_curves.h"

namespace gamma_library {
namespace {

namespace curves = ZEPH_MCUC::curves;

double SignalOf(double nits) {
  return curves::PqSignal(std::min(nits / curves::kPqPeak_nits, 1.0));
}

constexpr double kLiftPower = 4;     // of the published EETF
constexpr double kLeastSlope = 0.5;  // of the darkest signals, where the power can see to it

}  // namespace

ToneMap::ToneMap(const Screen& screen)
    : screen_(screen),
      top_(SignalOf(screen.peak_nits + screen.room_nits)),
      knee_(std::max(top_ - screen.knee * (1 - top_), 0.0)),
      room_(SignalOf(screen.room_nits)) {}

// A Hermite spline from the knee, where it goes on as the signal does, to the end, where it is
// level at the peak. A start steeper than three times its chord would make it overshoot.
double ToneMap::RollOff(double signal) const {
  if (signal <= knee_) return signal;
  const double t = (signal - knee_) / (1 - knee_);
  const double rise = (top_ - knee_) / (1 - knee_);
  const double slope = std::min(1.0, 3 * rise);
  const double t2 = t * t;
  const double t3 = t2 * t;
  return (2 * t3 - 3 * t2 + 1) * knee_ + (t3 - 2 * t2 + t) * (1 - knee_) * slope +
         (3 * t2 - 2 * t3) * top_;
}

// No signal becomes the dark screen, the top stays. The published power would level the darkest
// signals as the room gets lighter; a lower one keeps them apart and reaches further up.
double ToneMap::Lift(double signal) const {
  if (room_ <= 0) return signal;
  const double power = std::clamp((1 - kLeastSlope) * top_ / room_, 1.0, kLiftPower);
  return signal + room_ * std::pow(std::max(1 - signal / top_, 0.0), power);
}

double ToneMap::Drive(double signal) const {
  const double seen_nits = curves::kPqPeak_nits * curves::PqLight(Lift(RollOff(signal)));
  return std::clamp((seen_nits - screen_.room_nits) / screen_.peak_nits, 0.0, 1.0);
}

}  // namespace gamma_library
