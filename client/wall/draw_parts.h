// The parts of a wall's picture, in the order in which they are drawn.
#pragma once

#include "wall/paint.h"
#include "wall/pattern.h"
#include "wall/picture.h"

namespace quivord::wall {

// Title, what the wall is, what is drawn over its cabinets, and the stage with the screen's outline
// and size.
void DrawTitle(const Wall& wall, const std::string& over, const Picture& picture, Painter& painter);
void DrawStage(const Wall& wall, const Picture& picture, Painter& painter);

// The cabinets of one port, its cable and the numbers on it.
void DrawCabinets(const Wall& wall, const Port& port, const Picture& picture, Painter& painter);
void DrawCable(const Wall& wall, const Port& port, const Picture& picture, Painter& painter);

// What a cabinet's badge on the cable looks like; the legend shows the same.
enum class Station { kFirst, kBetween, kLast };
void DrawStation(Painter& painter, Point centre, std::size_t port, const std::string& number,
                 double cell, Station station);

// A test pattern over the cabinets, thinned out where it is too dense for a picture; and what is
// seen of it.
void DrawPattern(const Wall& wall, const Pattern& pattern, const Picture& picture,
                 Painter& painter);
std::string ShownText(const Pattern& pattern, const Picture& picture);

// Plates, sockets and signs.
void DrawLegend(const Wall& wall, const Picture& picture, Painter& painter);

}  // namespace quivord::wall
