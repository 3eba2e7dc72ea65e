// The picture of a scaling: the part of the source that is shown, and where it comes to lie beside
// the region that the output drives.
#pragma once

#include <filesystem>
#include <string>

#include "draw/paint.h"
#include "video/scale_plan.h"

namespace quivord::video {

// Draws the three rectangles of `plan`, in scale among those of the screen, into `file`. An empty
// text where that has worked, else why not.
std::string DrawScaling(const ScalePlan& plan, const std::filesystem::path& file,
                        draw::Format format);

}  // namespace quivord::video
