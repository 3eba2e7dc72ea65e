// Flags, legend and plates.
#include <algorithm>
#include <functional>

#include "brightness/draw_parts.h"
#include "brightness/text.h"

namespace quivord::brightness {
namespace {

using draw::Align;
using draw::Box;
using draw::Colour;
using draw::Dash;
using draw::Font;
using draw::Painter;
using draw::Point;

constexpr Font kHeading{11, true};
constexpr Font kBadgeFont{10.5, true};
constexpr Font kTime{15, true};
constexpr Font kLine{12.5};
constexpr double kBadge = 9.5;  // radius

// Which row of flags a node's flag stands in, so that neighbours don't touch.
int RowOfFlag(std::vector<double>& rows, double x) {
  for (std::size_t row = 0; row < rows.size(); ++row) {
    if (x - rows[row] >= kFlagDistance) {
      rows[row] = x;
      return static_cast<int>(row);
    }
  }
  return static_cast<int>(rows.size()) - 1;
}

double LegendItem(const Sheet& sheet, double x, const std::string& text,
                  const std::function<void(const Box&)>& sign) {
  const Box& box = sheet.picture.legend;
  const Box key{x, box.centre().y - 7, 26, 14};
  sign(key);
  sheet.painter.Text(text, {key.right() + 8, box.centre().y + 4.5}, kLine, palette::kSoftInk);
  return key.right() + 8 + sheet.painter.Width(text, kLine) + 26;
}

void DrawArrow(Painter& painter, const Box& key) {
  const Point foot{key.centre().x, key.bottom() + 2};
  painter.Line(foot, {foot.x, key.y - 2}, palette::kFixed, 2.6);
  painter.Chevron({foot.x, key.centre().y - 3}, 0, -1, 5, palette::kFixed, 2.2);
}

double MixLegend(const Sheet& sheet, double x) {
  Painter& painter = sheet.painter;
  const auto line = [&painter](const Colour& colour, Dash dash) {
    return [&painter, colour, dash](const Box& key) {
      const Point points[] = {{key.x, key.centre().y}, {key.right(), key.centre().y}};
      painter.Polyline(points, colour, dash == Dash::kNone ? 2.6 : 1.4, dash);
    };
  };
  if (!sheet.plan.nodes.empty()) {
    x = LegendItem(sheet, x, "fixed brightness", line(palette::kFixed, Dash::kNone));
  }
  if (ReachOf(sheet.plan).has_value()) {
    x = LegendItem(sheet, x, "by the light sensor, on a clear day",
                   line(palette::kSensed, Dash::kNone));
    x = LegendItem(sheet, x, "what the sensor can make of it",
                   [&painter](const Box& key) { painter.Fill(key, palette::kSensedReach); });
  }
  if (IsMixFamily(sheet.plan.kind) && sheet.plan.fallback.enabled) {
    x = LegendItem(sheet, x, "when it fails", line(palette::kSensed, Dash::kDots));
  }
  if (IsMixFamily(sheet.plan.kind) && sheet.plan.header.gradual) {
    x = LegendItem(sheet, x, sheet.picture.week() ? "ramp" : "ramp, and how long it takes",
                   [&painter](const Box& key) { DrawArrow(painter, key); });
  }
  return x;
}

void ListLegend(const Sheet& sheet, double x) {
  std::uint8_t driven = 0;
  for (const table::ListNode& node : sheet.plan.list) driven |= node.ports;
  for (std::size_t port = 0; port < table::list::kPortsDriven; ++port) {
    if ((driven >> port & 1) == 0) continue;
    x = LegendItem(sheet, x, "port " + std::to_string(port), [&](const Box& key) {
      sheet.painter.Line({key.x, key.centre().y}, {key.right(), key.centre().y},
                         palette::OfPort(port), 3.4);
    });
  }
}

}  // namespace

bool IsSensorNode(const Plan& plan, std::size_t node) {
  return node < plan.nodes.size() && plan.nodes[node].sensor;
}

void DrawBadge(Painter& painter, Point centre, std::size_t node, bool sensor, bool applies) {
  const Colour colour = sensor ? palette::kSensed : palette::kFixed;
  const Colour shown = applies ? colour : palette::kFaintInk;
  painter.Disc(centre, kBadge, shown);
  if (!applies) painter.Disc(centre, kBadge - 1.3, palette::kPaper);
  painter.Text(std::to_string(node), {centre.x, centre.y + Painter::CapHeight(kBadgeFont) / 2},
               kBadgeFont, applies ? palette::kPaper : palette::kFaintInk, Align::kCentre,
               kBadge * 1.5);
}

void DrawFlags(const Sheet& sheet, const Plot& plot) {
  const bool week = sheet.picture.week();
  std::vector<double> rows(week ? 1 : 2, -1e9);
  for (const Arrival& arrival : sheet.course.arrivals) {
    if (!plot.Holds(arrival.minute)) continue;
    const double x = plot.X(arrival.minute);
    const bool sensor = IsSensorNode(sheet.plan, arrival.node);
    const Colour colour = !arrival.applies ? palette::kFaintInk
                          : sensor         ? palette::kSensed
                                           : palette::kFixed;
    const Point pole[] = {{x, plot.box.y}, {x, plot.box.bottom()}};
    sheet.painter.Polyline(pole, draw::Mix(colour, palette::kPaper, 0.55), 0.8, Dash::kDashes);
    if (week) {
      sheet.painter.Disc({x, plot.box.y}, 3.2, colour);
      if (!arrival.applies) sheet.painter.Disc({x, plot.box.y}, 2.1, palette::kPaper);
      continue;
    }
    const double y = plot.box.y - 16 - 22.0 * RowOfFlag(rows, x);
    sheet.painter.Line({x, y}, {x, plot.box.y}, draw::Mix(colour, palette::kPaper, 0.55), 0.8);
    DrawBadge(sheet.painter, {x, y}, arrival.node, sensor, arrival.applies);
  }
}

void DrawLegend(const Sheet& sheet) {
  const double x = sheet.picture.legend.x;
  if (sheet.plan.kind == Kind::kList) {
    ListLegend(sheet, x);
  } else {
    MixLegend(sheet, x);
  }
}

void DrawPlates(const Sheet& sheet) {
  const auto lines = NodeLines(sheet.plan);
  if (lines.empty()) return;
  const Box& plates = sheet.picture.plates;
  sheet.painter.Text("NODES", {plates.x, plates.y - 12}, kHeading, palette::kFaintInk);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const Box box = sheet.picture.Plate(i);
    const bool sensor = IsSensorNode(sheet.plan, i);
    sheet.painter.Fill(box, palette::kStage, 8);
    DrawBadge(sheet.painter, {box.x + 24, box.centre().y}, i, sensor, lines[i].inUse);
    const double x = box.x + 46;
    const double most = box.right() - 12 - x;
    sheet.painter.Text(lines[i].time, {x, box.y + 25}, kTime, palette::kInk);
    sheet.painter.Text(lines[i].inUse ? lines[i].days : "not in use",
                       {box.right() - 14, box.y + 25}, kLine, palette::kFaintInk, Align::kRight,
                       most - 52);
    sheet.painter.Text(lines[i].what, {x, box.y + 45}, kLine, palette::kSoftInk, Align::kLeft,
                       most);
  }
}

}  // namespace quivord::brightness
