// The colours of a wall's picture.
#pragma once

#include "draw/palette.h"
#include "wall/paint.h"

namespace quivord::wall::palette {

using namespace draw::palette;

inline constexpr Colour kScreen = Rgb(0xE4E7ED);  // where no cabinet lies

}  // namespace quivord::wall::palette
