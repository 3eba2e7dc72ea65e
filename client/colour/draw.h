// The picture of the gamma tables that a device holds: light by input code, once as it is and once
// by decades, so that the dark shows too.
#pragma once

#include <filesystem>
#include <string>

#include "colour/scene.h"
#include "draw/paint.h"

namespace quivord::colour {

// Draws `scene` into `file`; a unit of the picture makes `scale` pixels of a PNG. An empty text
// where that has worked, else why not; what the file then holds is undefined.
std::string Draw(const Scene& scene, const std::filesystem::path& file, draw::Format format,
                 int scale = draw::kScale);

}  // namespace quivord::colour
