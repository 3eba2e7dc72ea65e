// The parts of a plan's picture, in the order in which they are drawn.
#pragma once

#include "brightness/picture.h"
#include "draw/palette.h"

namespace quivord::brightness {

// All that the parts work with.
struct Sheet {
  const Plan& plan;
  const Course& course;
  const Picture& picture;
  draw::Painter& painter;
};

namespace palette {
using namespace draw::palette;

inline constexpr draw::Colour kFixed = OfPort(0);
inline constexpr draw::Colour kSensed = OfPort(1);
inline constexpr draw::Colour kSensedHours = draw::Mix(kSensed, kPaper, 0.04);
inline constexpr draw::Colour kSensedReach = draw::Mix(kSensed, kPaper, 0.11);
inline constexpr draw::Colour kFixedArea = draw::Mix(kFixed, kPaper, 0.11);
inline constexpr draw::Colour kLight = draw::Rgb(0xF2B705);
inline constexpr draw::Colour kLightArea = draw::Mix(kLight, kPaper, 0.35);
}  // namespace palette

// Name and facts of the plan, above the stage.
void DrawTitle(const Sheet& sheet);

// The hours of the sensor, and the areas below fixed values, in one plot.
void DrawAreas(const Sheet& sheet, const Plot& plot);

// Grid and hours; of one day its values, of a week the days' names.
void DrawGrid(const Sheet& sheet);

// The brightness in one plot: lines, ramps, values.
void DrawCurve(const Sheet& sheet, const Plot& plot);

// The light that the sensor sees.
void DrawLight(const Sheet& sheet);

// A flag over the plot for each node whose time comes in it.
void DrawFlags(const Sheet& sheet, const Plot& plot);

// What the colours mean, and a plate for each node.
void DrawLegend(const Sheet& sheet);
void DrawPlates(const Sheet& sheet);

// A node's badge: full where it applies.
void DrawBadge(draw::Painter& painter, draw::Point centre, std::size_t node, bool sensor,
               bool applies);

// Whether a node hands over to the sensor.
bool IsSensorNode(const Plan& plan, std::size_t node);

}  // namespace quivord::brightness
