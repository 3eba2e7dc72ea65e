// Where everything stands in the picture of a brightness plan's course.
//
//     title, what the plan is
//     +--- stage ----------------------+
//     |  flags of the nodes            |    a day has one plot, a week seven below each other
//     |  plot                          |
//     |  light                         |    where a sensor reads it
//     +--------------------------------+
//     legend
//     a plate a node
//
// Pure: no cairo, any thread.
#pragma once

#include <vector>

#include "brightness/course.h"
#include "draw/paint.h"

namespace quivord::brightness {

// A stretch of the course on paper: minutes from left to right, values 0 to 255 upwards.
struct Plot {
  draw::Box box;
  int firstMinute = 0;  // since the course's beginning; the plot holds a day

  double X(double minute) const { return box.x + (minute - firstMinute) * box.width / kDayMinutes; }
  double Y(double value) const { return box.bottom() - value * box.height / 255; }
  bool Holds(int minute) const {
    return minute >= firstMinute && minute < firstMinute + kDayMinutes;
  }
};

struct Picture {
  double width = 0;
  double height = 0;
  draw::Box title;
  draw::Box stage;
  std::vector<Plot> plots;
  draw::Box light;  // empty where no sensor reads it
  draw::Box legend;
  draw::Box plates;

  bool week() const { return plots.size() > 1; }
  draw::Box Plate(std::size_t n) const;
};

// Rows in which flags of nodes are staggered, and how far apart they stand at least.
inline constexpr double kFlagDistance = 24;

Picture Arrange(const Plan& plan, const Course& course);

}  // namespace quivord::brightness
