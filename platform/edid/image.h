// The bytes of an EDID (VESA E-EDID 1.3 or 1.4, one CEA-861 extension) for a description.
#pragma once

#include <array>
#include <cstdint>

#include "edid/description.h"

namespace edid {

using Image = std::array<std::uint8_t, 256>;

Image Write(const Description& sink);

}  // namespace edid
