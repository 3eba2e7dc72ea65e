// The picture of a brightness plan: the course of a day, or of a week, with its nodes, the hours of
// the sensor and the ramps.
#pragma once

#include <filesystem>
#include <string>

#include "brightness/course.h"
#include "draw/paint.h"

namespace quivord::brightness {

struct Drawing {
  std::filesystem::path file;
  draw::Format format = draw::Format::kPng;
  int scale = draw::kScale;
};

// Draws `course`, that of `plan`, which has no `CourseObstacle`. An empty text where that has
// worked, else why not; what the file then holds is undefined.
std::string Draw(const Plan& plan, const Course& course, const Drawing& drawing);

}  // namespace quivord::brightness
