// A picture of a wall is drawn in the shapes of all pictures.
#pragma once

#include "draw/paint.h"

namespace quivord::wall {

using draw::Align;
using draw::Box;
using draw::Colour;
using draw::Font;
using draw::Format;
using draw::FormatOf;
using draw::kMostScale;
using draw::kScale;
using draw::Mix;
using draw::Painter;
using draw::Point;
using draw::Rgb;

}  // namespace quivord::wall
