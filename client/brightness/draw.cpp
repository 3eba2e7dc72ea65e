#include "brightness/draw.h"

#include <algorithm>

#include "brightness/draw_parts.h"
#include "brightness/text.h"

namespace quivord::brightness {
namespace {

using draw::Align;
using draw::Box;
using draw::Font;
using draw::Painter;
using draw::Point;

constexpr Font kTitleFont{30, true};
constexpr Font kLineFont{15};
constexpr Font kDayFont{13, true};
constexpr Font kAxisFont{11.5};
constexpr int kValueSteps = 4;
constexpr int kHour = 60;

constexpr const char* kDayNames[] = {"Monday", "Tuesday",  "Wednesday", "Thursday",
                                     "Friday", "Saturday", "Sunday"};

const char* DayName(int day) { return kDayNames[day % kWeekDays]; }

std::string TitleText(const Course& course) {
  if (course.days() > 1) return "Brightness in the course of a week";
  return "Brightness in the course of a " + std::string(DayName(course.firstDay));
}

std::string PlanText(const Plan& plan) {
  std::string text = RowOf(plan.kind).text;
  text.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(text.front())));
  const std::size_t nodes = std::max(plan.list.size(), plan.nodes.size());
  if (nodes > 0) text += ", " + std::to_string(nodes) + (nodes == 1 ? " node" : " nodes");
  if (IsMixFamily(plan.kind)) text += plan.header.gradual ? ", gradual changes" : "";
  return text;
}

void DrawValues(Painter& painter, const Plot& plot, bool week, bool named) {
  for (int step = 0; step <= kValueSteps; ++step) {
    const double y = plot.Y(255.0 * step / kValueSteps);
    const bool edge = step == 0 || step == kValueSteps;
    if (week && !edge && step != kValueSteps / 2) continue;
    painter.Line({plot.box.x, y}, {plot.box.right(), y}, palette::kHairline, edge ? 1 : 0.6);
    const double base = y + Painter::CapHeight(kAxisFont) / 2;
    if (!week) {
      painter.Text(std::to_string(100 * step / kValueSteps) + "%", {plot.box.x - 10, base},
                   kAxisFont, palette::kSoftInk, Align::kRight);
    }
    if (named && (!week || edge)) {
      painter.Text(std::to_string(255 * step / kValueSteps), {plot.box.right() + 10, base},
                   kAxisFont, palette::kFaintInk);
    }
  }
}

void DrawHourLines(Painter& painter, const Plot& plot) {
  for (int hour = 0; hour <= 24; ++hour) {
    const double x = plot.X(plot.firstMinute + hour * kHour);
    const double width = hour % 6 == 0 ? 0.9 : hour % 3 == 0 ? 0.6 : 0.35;
    painter.Line({x, plot.box.y}, {x, plot.box.bottom()}, palette::kHairline, width);
  }
}

void DrawHours(Painter& painter, const Plot& plot) {
  for (int hour = 0; hour <= 24; hour += 2) {
    char text[8];
    std::snprintf(text, sizeof text, "%02d:00", hour);
    painter.Text(text, {plot.X(plot.firstMinute + hour * kHour), plot.box.bottom() + 20}, kAxisFont,
                 hour % 6 == 0 ? palette::kSoftInk : palette::kFaintInk, Align::kCentre);
  }
}

}  // namespace

void DrawTitle(const Sheet& sheet) {
  const Box& box = sheet.picture.title;
  Painter& painter = sheet.painter;
  painter.Text(TitleText(sheet.course), {box.x, box.y + 24}, kTitleFont, palette::kInk);
  painter.Text(PlanText(sheet.plan), {box.x, box.y + 58}, kLineFont, palette::kSoftInk,
               Align::kLeft, box.width);
  painter.Text(SensingText(sheet.plan), {box.x, box.y + 82}, kLineFont, palette::kSoftInk,
               Align::kLeft, box.width);
}

void DrawGrid(const Sheet& sheet) {
  const bool week = sheet.picture.week();
  for (std::size_t day = 0; day < sheet.picture.plots.size(); ++day) {
    const Plot& plot = sheet.picture.plots[day];
    DrawHourLines(sheet.painter, plot);
    DrawValues(sheet.painter, plot, week, day == 0);
    if (!week) continue;
    const std::string name = DayName(sheet.course.firstDay + static_cast<int>(day));
    sheet.painter.Text(name.substr(0, 3), {sheet.picture.stage.x + 20, plot.box.centre().y + 5},
                       kDayFont, palette::kInk);
  }
  DrawHours(sheet.painter, sheet.picture.plots.back());
}

std::string Draw(const Plan& plan, const Course& course, const Drawing& drawing) {
  const Picture picture = Arrange(plan, course);
  Painter painter(drawing.file, drawing.format, picture.width, picture.height, drawing.scale);
  const Sheet sheet{plan, course, picture, painter};
  painter.Fill({0, 0, picture.width, picture.height}, palette::kPaper);
  DrawTitle(sheet);
  painter.Fill(picture.stage, palette::kStage, 12);
  for (const Plot& plot : picture.plots) DrawAreas(sheet, plot);
  DrawGrid(sheet);
  for (const Plot& plot : picture.plots) DrawCurve(sheet, plot);
  DrawLight(sheet);
  for (const Plot& plot : picture.plots) DrawFlags(sheet, plot);
  DrawLegend(sheet);
  DrawPlates(sheet);
  return painter.Finish();
}

}  // namespace quivord::brightness
