#include <algorithm>
#include <cmath>

#include "wall/draw_parts.h"
#include "wall/palette.h"

namespace quivord::wall {
namespace {

// Sizes that follow the cabinet's.
double LineWidth(double cell) { return std::clamp(cell * 0.055, 0.8, 5.0); }
Font NumberFont(double cell) { return {std::clamp(cell * 0.24, 5.0, 24.0), true}; }
Font TagFont(double cell) { return {std::clamp(cell * 0.14, 3.6, 13.0), true}; }
double BadgeHeight(double cell) { return NumberFont(cell).size * 1.62; }

struct Step {
  double dx, dy;
};

// Where a cable comes from before its first cabinet: where its first line runs from.
Step FirstStep(const Port& port) {
  if (port.cabinets.size() > 1) {
    const Corner& first = port.cabinets[0];
    const Corner& second = port.cabinets[1];
    const double dx = static_cast<double>(second.x) - first.x;
    const double dy = static_cast<double>(second.y) - first.y;
    if (dx != 0 || dy != 0) return std::abs(dx) >= std::abs(dy) ? Step{dx, 0} : Step{0, dy};
  }
  if (!port.mode.has_value() || !ZEPH_MCUC::IsConnectionMode(*port.mode)) return {1, 0};
  switch (ZEPH_MCUC::kConnectionModes[*port.mode].runs) {
    case ZEPH_MCUC::Direction::kRight:
      return {1, 0};
    case ZEPH_MCUC::Direction::kDown:
      return {0, 1};
    case ZEPH_MCUC::Direction::kLeft:
      return {-1, 0};
    default:
      return {0, -1};
  }
}

// The middle of the edge by which a cable enters `box`.
Point Entry(const Box& box, const Step& step) {
  const Point centre = box.centre();
  const auto sign = [](double value) { return value > 0 ? 1.0 : value < 0 ? -1.0 : 0.0; };
  return {centre.x - sign(step.dx) * box.width / 2, centre.y - sign(step.dy) * box.height / 2};
}

void DrawEntry(Painter& painter, const Box& box, const Step& step, std::size_t port, double cell) {
  const Point entry = Entry(box, step);
  const Colour colour = palette::OfPort(port);
  painter.Line(entry, box.centre(), colour, LineWidth(cell));
  painter.Disc(entry, LineWidth(cell) * 1.5, colour);
}

void DrawLink(Painter& painter, Point from, Point to, std::size_t port, double cell) {
  if (from.x == to.x && from.y == to.y) return;
  painter.Line(from, to, palette::OfPort(port), LineWidth(cell));
}

// A chevron half way, so that the direction shows at every step.
void DrawDirection(Painter& painter, Point from, Point to, std::size_t port, double cell) {
  const double dx = to.x - from.x;
  const double dy = to.y - from.y;
  const double length = std::hypot(dx, dy);
  if (length == 0) return;
  const double size = std::clamp(cell * 0.07, 1.5, 8.0);
  const Point tip{(from.x + to.x) / 2 + dx / length * size / 2,
                  (from.y + to.y) / 2 + dy / length * size / 2};
  painter.Chevron(tip, dx, dy, size, palette::OfPort(port), LineWidth(cell));
}

}  // namespace

void DrawStation(Painter& painter, Point centre, std::size_t port, const std::string& number,
                 double cell, Station station) {
  const Font font = NumberFont(cell);
  const double height = BadgeHeight(cell);
  const double most = cell * 0.8;
  const double width =
      std::min(most, std::max(height, painter.Width(number, font) + height * 0.62));
  const Box badge{centre.x - width / 2, centre.y - height / 2, width, height};
  const Colour colour = palette::OfPort(port);
  const double line = LineWidth(cell) * 0.6;
  if (station == Station::kLast) {
    painter.Fill(badge.inset(-line * 1.9), colour, height);
    painter.Fill(badge.inset(-line), palette::kPaper, height);
  }
  painter.Fill(badge, colour, height);
  if (station != Station::kFirst) painter.Fill(badge.inset(line), palette::kPaper, height);
  const Colour ink = station == Station::kFirst ? palette::kPaper : palette::kInk;
  painter.Text(number, {centre.x, centre.y + Painter::CapHeight(font) / 2}, font, ink,
               Align::kCentre, width - height * 0.3);
}

void DrawCabinets(const Wall& wall, const Port& port, const Picture& picture, Painter& painter) {
  const double gap = std::clamp(picture.cell * 0.02, 0.25, 2.0);
  const double radius = std::clamp(picture.cell * 0.05, 0.0, 6.0);
  const Font font = TagFont(picture.cell);
  const std::string tag = "P" + std::to_string(port.number);
  for (const Corner& corner : port.cabinets) {
    const Box box = picture.Cabinet(wall, corner).inset(gap);
    painter.Fill(box, palette::Edge(port.number), radius);
    painter.Fill(box.inset(std::min(1.0, picture.cell * 0.04)), palette::Tint(port.number),
                 radius * 0.8);
    if (!picture.labelled()) continue;
    const double inside = font.size * 0.45;
    painter.Text(tag, {box.x + inside, box.y + inside + Painter::CapHeight(font)}, font,
                 palette::OfPort(port.number));
  }
}

void DrawCable(const Wall& wall, const Port& port, const Picture& picture, Painter& painter) {
  if (port.cabinets.empty()) return;
  std::vector<Point> centres;
  for (const Corner& corner : port.cabinets) {
    centres.push_back(picture.Cabinet(wall, corner).centre());
  }
  const double cell = picture.cell;
  DrawEntry(painter, picture.Cabinet(wall, port.cabinets[0]), FirstStep(port), port.number, cell);
  for (std::size_t i = 1; i < centres.size(); ++i) {
    DrawLink(painter, centres[i - 1], centres[i], port.number, cell);
  }
  if (!picture.labelled()) return;
  for (std::size_t i = 0; i < centres.size(); ++i) {
    if (i > 0) DrawDirection(painter, centres[i - 1], centres[i], port.number, cell);
    const bool last = i + 1 == centres.size() && i > 0;
    DrawStation(painter, centres[i], port.number, std::to_string(i), cell,
                i == 0 ? Station::kFirst
                : last ? Station::kLast
                       : Station::kBetween);
  }
}

}  // namespace quivord::wall
