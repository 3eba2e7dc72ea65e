// The brightness itself, and the light.
#include <algorithm>
#include <cstdio>
#include <functional>

#include "brightness/draw_parts.h"

namespace quivord::brightness {
namespace {

using draw::Align;
using draw::Box;
using draw::Colour;
using draw::Dash;
using draw::Font;
using draw::Painter;
using draw::Point;

constexpr Font kValueFont{13, true};
constexpr Font kSmallFont{10.5};
constexpr double kLine = 2.6;
constexpr double kWeekLine = 1.8;

// Minutes of a plot that follow each other and are alike.
struct Stretch {
  int begin;
  int end;  // exclusive
};

std::vector<Stretch> Stretches(const Course& course, const Plot& plot,
                               const std::function<bool(const Minute&)>& holds,
                               const std::function<bool(const Minute&, const Minute&)>& alike) {
  std::vector<Stretch> stretches;
  for (int at = plot.firstMinute; at < plot.firstMinute + kDayMinutes; ++at) {
    const Minute& minute = course.minutes[static_cast<std::size_t>(at)];
    if (!holds(minute)) continue;
    const bool follows =
        !stretches.empty() && stretches.back().end == at &&
        alike(course.minutes[static_cast<std::size_t>(stretches.back().begin)], minute);
    if (follows) {
      stretches.back().end = at + 1;
    } else {
      stretches.push_back({at, at + 1});
    }
  }
  return stretches;
}

std::vector<Stretch> SensorHours(const Course& course, const Plot& plot) {
  return Stretches(
      course, plot, [](const Minute& minute) { return minute.source == Source::kSensor; },
      [](const Minute&, const Minute&) { return true; });
}

Box Over(const Plot& plot, const Stretch& stretch, double low, double high) {
  const double x = plot.X(stretch.begin);
  return {x, plot.Y(high), plot.X(stretch.end) - x, plot.Y(low) - plot.Y(high)};
}

std::string Percent(double value) {
  return std::to_string(static_cast<int>(value * 100 / 255 + 0.5)) + "%";
}

// Hours of the sensor: all it can do, and what is shown when it fails.
void DrawSensorHours(const Sheet& sheet, const Plot& plot) {
  const auto reach = ReachOf(sheet.plan);
  if (!reach.has_value()) return;
  for (const Stretch& stretch : SensorHours(sheet.course, plot)) {
    sheet.painter.Fill(Over(plot, stretch, 0, 255), palette::kSensedHours);
    sheet.painter.Fill(Over(plot, stretch, reach->least, reach->most), palette::kSensedReach);
  }
}

void DrawFallback(const Sheet& sheet, const Plot& plot) {
  if (!IsMixFamily(sheet.plan.kind) || !sheet.plan.fallback.enabled) return;
  const double y = plot.Y(table::FromPercent(sheet.plan.fallback.percent));
  for (const Stretch& stretch : SensorHours(sheet.course, plot)) {
    const Point line[] = {{plot.X(stretch.begin), y}, {plot.X(stretch.end), y}};
    sheet.painter.Polyline(line, palette::kSensed, 1, Dash::kDots);
  }
}

void DrawFixedAreas(const Sheet& sheet, const Plot& plot) {
  if (sheet.plan.kind == Kind::kList) return;  // its ports would lie on each other
  const auto stretches = Stretches(
      sheet.course, plot,
      [](const Minute& minute) {
        return minute.source == Source::kFixed && minute.value[0].has_value();
      },
      [](const Minute& a, const Minute& b) { return a.value[0] == b.value[0]; });
  for (const Stretch& stretch : stretches) {
    const int value = *sheet.course.minutes[static_cast<std::size_t>(stretch.begin)].value[0];
    sheet.painter.Fill(Over(plot, stretch, 0, value), palette::kFixedArea);
  }
}

struct Pen {
  Colour colour;
  double width;
  double above = 0;  // the value, so that lines of one value lie beside each other
  double joint = 0;  // width of the line between two fixed values; 0 for none
};

// The line of one port where its minutes come from `source`, a piece a value where it is fixed.
void DrawPort(const Sheet& sheet, const Plot& plot, std::size_t port, Source source,
              const Pen& pen) {
  std::vector<Point> line;
  const auto flush = [&] {
    if (line.size() > 1) sheet.painter.Polyline(line, pen.colour, pen.width);
    line.clear();
  };
  for (int at = plot.firstMinute; at < plot.firstMinute + kDayMinutes; ++at) {
    const Minute& minute = sheet.course.minutes[static_cast<std::size_t>(at)];
    if (minute.source != source || !minute.value[port].has_value()) {
      flush();
      continue;
    }
    const double y = plot.Y(*minute.value[port]) - pen.above;
    if (source == Source::kFixed && !line.empty() && line.back().y != y) {
      const Point step[] = {line.back(), {line.back().x, y}};
      flush();
      if (pen.joint > 0) sheet.painter.Polyline(step, pen.colour, pen.joint);
    }
    line.push_back({plot.X(at), y});
    line.push_back({plot.X(at + 1), y});
  }
  flush();
}

// The way from one value to the next: a ramp at its true length is too short to be seen, so an
// arrow stands for it; a change at once is a dotted line.
void DrawChange(const Sheet& sheet, const Plot& plot, const Arrival& arrival) {
  const double x = plot.X(arrival.minute);
  const Point from{x, plot.Y(arrival.from)};
  const Point to{x, plot.Y(arrival.to)};
  const Colour& colour =
      IsSensorNode(sheet.plan, arrival.node) ? palette::kSensed : palette::kFixed;
  if (arrival.ramp_s == 0) {
    const Point line[] = {from, to};
    sheet.painter.Polyline(line, colour, 1.4, Dash::kDots);
    return;
  }
  sheet.painter.Line(from, to, colour, sheet.picture.week() ? kWeekLine : kLine);
  const double length = std::abs(to.y - from.y);
  if (length < 18) return;
  const double way = to.y > from.y ? 1 : -1;
  sheet.painter.Chevron({x, (from.y + to.y) / 2 + way * 3}, 0, way, 5, colour, 2.2);
  if (sheet.picture.week() || length < 30) return;
  char text[32];
  std::snprintf(text, sizeof text, "%.1f s", arrival.ramp_s);
  // On the side where the area lies.
  const bool falls = way > 0;
  sheet.painter.Text(text, {falls ? x - 9 : x + 9, (from.y + to.y) / 2 + 4}, kSmallFont,
                     palette::kSoftInk, falls ? Align::kRight : Align::kLeft);
}

// Whether a port before `port` goes to the same value in the same minute.
bool IsNamed(const Sheet& sheet, int minute, std::size_t port) {
  const Minute& now = sheet.course.minutes[static_cast<std::size_t>(minute)];
  for (std::size_t other = 0; other < port; ++other) {
    if (now.value[other] != now.value[port]) continue;
    const bool fresh =
        minute % kDayMinutes == 0 ||
        sheet.course.minutes[static_cast<std::size_t>(minute) - 1].value[other] != now.value[other];
    if (fresh) return true;
  }
  return false;
}

// The value of a fixed stretch, over its line.
void DrawFixedValues(const Sheet& sheet, const Plot& plot, std::size_t port) {
  const auto stretches = Stretches(
      sheet.course, plot,
      [port](const Minute& minute) {
        return minute.source == Source::kFixed && minute.value[port].has_value();
      },
      [port](const Minute& a, const Minute& b) { return a.value[port] == b.value[port]; });
  for (const Stretch& stretch : stretches) {
    const int value = *sheet.course.minutes[static_cast<std::size_t>(stretch.begin)].value[port];
    const std::string text = Percent(value);
    const double room = plot.X(stretch.end) - plot.X(stretch.begin);
    if (room < sheet.painter.Width(text, kValueFont) + 12) continue;
    if (IsNamed(sheet, stretch.begin, port)) continue;
    const bool list = sheet.plan.kind == Kind::kList;
    const double above = plot.Y(value) - (list ? 12 : 8);
    const double y = above - 10 < plot.box.y ? plot.Y(value) + (list ? 22 : 18) : above;
    sheet.painter.Text(text, {plot.X(stretch.begin) + room / 2, y}, kValueFont,
                       list ? palette::kSoftInk : palette::kFixed, Align::kCentre);
  }
}

void DrawList(const Sheet& sheet, const Plot& plot) {
  const double line = sheet.picture.week() ? kWeekLine : kLine;
  for (std::size_t port = 0; port < table::list::kPortsDriven; ++port) {
    const double above = (1.5 - static_cast<double>(port)) * (line + 0.6);
    DrawPort(sheet, plot, port, Source::kFixed, {palette::OfPort(port), line, above, 0.7});
    if (!sheet.picture.week()) DrawFixedValues(sheet, plot, port);
  }
}

}  // namespace

void DrawAreas(const Sheet& sheet, const Plot& plot) {
  sheet.painter.Fill(plot.box, palette::kPaper);
  DrawSensorHours(sheet, plot);
  DrawFixedAreas(sheet, plot);
}

void DrawCurve(const Sheet& sheet, const Plot& plot) {
  DrawFallback(sheet, plot);
  if (sheet.plan.kind == Kind::kList) {
    DrawList(sheet, plot);
    return;
  }
  const double line = sheet.picture.week() ? kWeekLine : kLine;
  for (const Arrival& arrival : sheet.course.arrivals) {
    if (arrival.applies && plot.Holds(arrival.minute)) DrawChange(sheet, plot, arrival);
  }
  DrawPort(sheet, plot, 0, Source::kSensor, {palette::kSensed, line});
  DrawPort(sheet, plot, 0, Source::kFixed, {palette::kFixed, line});
  if (!sheet.picture.week()) DrawFixedValues(sheet, plot, 0);
}

void DrawLight(const Sheet& sheet) {
  const Box& box = sheet.picture.light;
  if (box.width == 0) return;
  Painter& painter = sheet.painter;
  const Plot& day = sheet.picture.plots.back();
  const std::uint16_t most =
      std::max<std::uint16_t>(*std::ranges::max_element(sheet.course.lux), 1);
  painter.Fill(box, palette::kPaper);
  std::vector<Point> area = {{box.x, box.bottom()}};
  for (int minute = 0; minute < kDayMinutes; minute += 5) {
    const double part =
        sheet.course.lux[static_cast<std::size_t>(minute)] / static_cast<double>(most);
    area.push_back({day.X(day.firstMinute + minute), box.bottom() - part * (box.height - 8)});
  }
  area.push_back({box.right(), box.bottom()});
  painter.Polygon(area, palette::kLightArea);
  painter.Polyline(std::span(area).subspan(1, area.size() - 2), palette::kLight, 1.6);
  painter.Line({box.x, box.bottom()}, {box.right(), box.bottom()}, palette::kHairline, 1);
  painter.Text("light", {box.x - 10, box.centre().y + 4}, kSmallFont, palette::kSoftInk,
               Align::kRight);
  painter.Text(std::to_string(most) + " lux", {box.right() - 8, box.y + 16}, kSmallFont,
               palette::kFaintInk, Align::kRight);
}

}  // namespace quivord::brightness
