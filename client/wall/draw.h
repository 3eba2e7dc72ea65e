// The picture of a wall: cabinets in place, each port its colour, the cable from its first to its
// last cabinet, and a legend.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "wall/model.h"
#include "wall/paint.h"
#include "wall/pattern.h"

namespace quivord::wall {

// Why there is nothing to draw, or nothing where there is.
std::optional<std::string> DrawObstacle(const Wall& wall);

// Draws `wall`, which has no `DrawObstacle`, into `file`; a unit of the picture makes `scale`
// pixels of a PNG, up to `kMostScale`. With a test pattern, that lies over the cabinets in place of
// the cables. An empty text where it has worked, else why not; what the file then holds is
// undefined.
std::string Draw(const Wall& wall, const std::filesystem::path& file, Format format,
                 int scale = kScale, const std::optional<Pattern>& pattern = std::nullopt);

}  // namespace quivord::wall
