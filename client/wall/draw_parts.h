// The parts of a wall's picture, in the order in which they are drawn.
#pragma once

#include "wall/paint.h"
#include "wall/picture.h"

namespace quivord::wall {

// Title, what the wall is, and the stage with the screen's outline and size.
void DrawTitle(const Wall& wall, const Picture& picture, Painter& painter);
void DrawStage(const Wall& wall, const Picture& picture, Painter& painter);

// The cabinets of one port, its cable and the numbers on it.
void DrawCabinets(const Wall& wall, const Port& port, const Picture& picture, Painter& painter);
void DrawCable(const Wall& wall, const Port& port, const Picture& picture, Painter& painter);

// What a cabinet's badge on the cable looks like; the legend shows the same.
enum class Station { kFirst, kBetween, kLast };
void DrawStation(Painter& painter, Point centre, std::size_t port, const std::string& number,
                 double cell, Station station);

// Plates, sockets and signs.
void DrawLegend(const Wall& wall, const Picture& picture, Painter& painter);

}  // namespace quivord::wall
