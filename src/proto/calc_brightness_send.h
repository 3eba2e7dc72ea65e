// What goes out: the values of a ramp, the frames that take the FPGA's own road, and the list that
// a screen-mounted controller sends. Pure.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace ZEPH_MCUC::brightness {

// The values to be sent one after the other on the way from `from` to `to`: each step where the
// way is `gradual`, else the last alone. `from` is not sent again, save where it is all there is.
std::vector<uint8_t> RampValues(uint8_t from, uint8_t to, bool gradual);

struct Colours {
  uint8_t red = 0;
  uint8_t green = 0;
  uint8_t blue = 0;
  uint8_t virtualRed = 0;
};

// Packets to all cards of `port`, header and sum included.
std::array<uint8_t, 18> ColourFrame(uint8_t port, const Colours& colours);
std::array<uint8_t, 15> BrightnessFrame(uint8_t port, uint8_t brightness);

// A screen-mounted controller's write: a brightness, and the ports of each sender that get it.
struct ScreenSent {
  struct Sender {
    uint8_t address = 0;
    uint8_t ports = 0;  // bit n is port n
  };
  uint8_t brightness = 0;
  std::vector<Sender> senders;  // those that the data holds, whatever its count says
};

// No senders where `data` is too short for any.
ScreenSent ScreenSentOf(std::span<const uint8_t> data);

}  // namespace ZEPH_MCUC::brightness
