// The colours that all pictures share.
#pragma once

#include <array>

#include "draw/paint.h"

namespace quivord::draw::palette {

inline constexpr Colour kPaper = Rgb(0xFFFFFF);
inline constexpr Colour kStage = Rgb(0xF3F4F7);
inline constexpr Colour kInk = Rgb(0x161B26);
inline constexpr Colour kSoftInk = Rgb(0x5A6274);
inline constexpr Colour kFaintInk = Rgb(0x8B93A3);
inline constexpr Colour kHairline = Rgb(0xD8DCE4);

// One a port, of like weight, neighbours far apart.
inline constexpr std::array<Colour, 10> kPortColours = {
    Rgb(0x2563EB),  // blue
    Rgb(0xE8590C),  // orange
    Rgb(0x12855A),  // green
    Rgb(0xC2255C),  // crimson
    Rgb(0x7048E8),  // violet
    Rgb(0x0B8AA0),  // teal
    Rgb(0xB07D05),  // ochre
    Rgb(0xC736B0),  // magenta
    Rgb(0x5C7A12),  // olive
    Rgb(0x5B6B85),  // slate
};

constexpr Colour OfPort(std::size_t port) { return kPortColours[port % kPortColours.size()]; }
constexpr Colour Tint(std::size_t port) { return Mix(OfPort(port), kPaper, 0.16); }
constexpr Colour Edge(std::size_t port) { return Mix(OfPort(port), kPaper, 0.42); }

}  // namespace quivord::draw::palette
