// What a screen makes of a PQ signal that may ask for more light than it has and more darkness than
// the room allows.
//
// The roll-off at the high end is the EETF of ITU-R BT.2390: up to a knee the light is what SMPTE
// ST 2084 says, from there a spline leads to the screen's peak. At the low end the screen can't be
// darker than what it throws back of the room's light; as in the EETF, dark signals are lifted so
// that they still differ above that. Pure, any thread.
#pragma once

namespace gamma_library {

struct Screen {
  double peak_nits = 1000;  // with the cards at full brightness, 1 up
  double room_nits = 0;     // what the dark screen throws back, 0 to a half of `peak_nits`
  double knee = 0.5;        // how far below the peak the roll-off begins, in distances of the peak
                            // from the signal's end; 0 clips, 0.5 is the published EETF
};

class ToneMap {
 public:
  explicit ToneMap(const Screen& screen);

  // The share of its light that the screen gives for `signal`, 0 to 1; rising.
  double Drive(double signal) const;

 private:
  double RollOff(double signal) const;
  double Lift(double signal) const;

  // All but the first are PQ signals.
  Screen screen_;
  double top_;   // of the screen at its peak
  double knee_;  // where the roll-off begins
  double room_;  // of the dark screen
};

}  // namespace gamma_library
