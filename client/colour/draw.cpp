#include "colour/draw.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "draw/palette.h"

namespace quivord::colour {
namespace {

using draw::Align;
using draw::Box;
using draw::Colour;
using draw::Font;
using draw::Painter;
using draw::Point;
using ZEPH_MCUC::GammaEntry;
using ZEPH_MCUC::kFullLight;
using ZEPH_MCUC::kGammaEntries;
namespace palette = draw::palette;

constexpr Font kTitleFont{30, true};
constexpr Font kLineFont{15};
constexpr Font kHeadingFont{11, true};
constexpr Font kAxisFont{11.5};
constexpr Font kLegendFont{13};

// Where everything stands.
constexpr double kWidth = 1280;
constexpr double kHeight = 700;
constexpr double kMargin = 40;
constexpr double kGap = 24;
constexpr Box kLeft{kMargin, 116, (kWidth - 2 * kMargin - kGap) / 2, 472};
constexpr Box kRight{kLeft.x + kLeft.width + kGap, kLeft.y, kLeft.width, kLeft.height};
constexpr double kLegendTop = kLeft.y + kLeft.height + 46;

// Red lies on green, green on blue, all on the reference: where they run together each shows beside
// the next.
struct Pen {
  std::size_t colour;
  const char* name;
  Colour ink;
  double width;
};
constexpr Pen kPens[] = {{2, "blue", draw::Rgb(0x3B82F6), 9},
                         {1, "green", draw::Rgb(0x22A55B), 5.6},
                         {0, "red", draw::Rgb(0xE5383B), 2.4}};
constexpr Colour kReference = draw::Rgb(0xD3D9E4);
constexpr double kReferenceWidth = 17;

constexpr double kDarkest = 1.0 / kFullLight;  // the smallest entry but 0
constexpr int kDecades = 5;

enum class Axis { kPlain, kLogarithmic };

// A plot's field, and where a code and a light stand in it.
struct Plot {
  Box field;
  Axis axis;

  double X(double code) const { return field.x + field.width * code / (kGammaEntries - 1); }
  double Y(double light) const {
    const double part = axis == Axis::kPlain ? light : 1 + std::log10(light) / kDecades;
    return field.bottom() - field.height * std::clamp(part, 0.0, 1.0);
  }
};

Plot PlotIn(const Box& stage, Axis axis) {
  return {{stage.x + 76, stage.y + 46, stage.width - 104, stage.height - 102}, axis};
}

// A light in the unit of the axis: cd/m2 where the mode knows a peak, percent where it doesn't.
std::string LightText(double light, double peak_nits) {
  const double value = peak_nits > 0 ? light * peak_nits : 100 * light;
  char text[24];
  std::snprintf(text, sizeof text, "%.*g", 4, value);
  return text;
}

void DrawTick(Painter& painter, const Plot& plot, double light, const std::string& text) {
  const double y = plot.Y(light);
  painter.Line({plot.field.x, y}, {plot.field.right(), y}, palette::kHairline, 0.8);
  painter.Text(text, {plot.field.x - 10, y + Painter::CapHeight(kAxisFont) / 2}, kAxisFont,
               palette::kSoftInk, Align::kRight);
}

void DrawLights(Painter& painter, const Plot& plot, double peak_nits) {
  if (plot.axis == Axis::kPlain) {
    for (int quarter = 0; quarter <= 4; ++quarter) {
      DrawTick(painter, plot, quarter / 4.0, LightText(quarter / 4.0, peak_nits));
    }
    return;
  }
  // Whole powers of ten in the axis's unit.
  const double most = peak_nits > 0 ? peak_nits : 100;
  for (double value = std::pow(10, std::floor(std::log10(most))); value / most >= 1e-5 * 0.999;
       value /= 10) {
    DrawTick(painter, plot, value / most, LightText(value / most, peak_nits));
  }
}

void DrawCodes(Painter& painter, const Plot& plot) {
  for (const int code : {0, 1024, 2048, 3072, 4095}) {
    const double x = plot.X(code);
    painter.Line({x, plot.field.y}, {x, plot.field.bottom()}, palette::kHairline, 0.8);
    painter.Text(std::to_string(code), {x, plot.field.bottom() + 20}, kAxisFont, palette::kSoftInk,
                 Align::kCentre);
  }
  painter.Text("input code", {plot.field.x + plot.field.width / 2, plot.field.bottom() + 40},
               kAxisFont, palette::kFaintInk, Align::kCentre);
}

// The points of a curve; by decades it begins where there is light.
template <class Light>
std::vector<Point> Points(const Plot& plot, Light light) {
  std::vector<Point> points;
  for (std::size_t code = 0; code < kGammaEntries; code += code == 0 ? 3 : 4) {
    const double at = light(code);
    if (plot.axis == Axis::kLogarithmic && at < kDarkest) continue;
    points.push_back({plot.X(static_cast<double>(code)), plot.Y(at)});
  }
  return points;
}

void DrawPlot(Painter& painter, const Scene& scene, const Box& stage, Axis axis) {
  const Plot plot = PlotIn(stage, axis);
  const double peak_nits = ReferenceOf(scene).peak_nits;
  painter.Fill(stage, palette::kStage, 12);
  painter.Fill(plot.field, palette::kPaper);
  std::string heading = peak_nits > 0 ? "LIGHT OF THE SCREEN, cd/m²" : "LIGHT OF THE SCREEN, %";
  if (axis == Axis::kLogarithmic) heading += ", BY DECADES";
  painter.Text(heading, {stage.x + 24, stage.y + 27}, kHeadingFont, palette::kFaintInk);
  DrawLights(painter, plot, peak_nits);
  DrawCodes(painter, plot);
  painter.Polyline(Points(plot, [&scene](std::size_t code) { return ReferenceLight(scene, code); }),
                   kReference, kReferenceWidth);
  for (const Pen& pen : kPens) {
    const auto& table = scene.set[pen.colour];
    painter.Polyline(Points(plot,
                            [&table](std::size_t code) {
                              return GammaEntry(table, code) / static_cast<double>(kFullLight);
                            }),
                     pen.ink, pen.width);
  }
}

// A swatch and its meaning; gives where the next one stands.
double DrawSign(Painter& painter, double x, const Colour& ink, double width,
                const std::string& text) {
  painter.Line({x + 4, kLegendTop - 4.5}, {x + 30, kLegendTop - 4.5}, ink, width);
  painter.Text(text, {x + 42, kLegendTop}, kLegendFont, palette::kSoftInk);
  return x + 42 + painter.Width(text, kLegendFont) + 34;
}

void DrawLegend(Painter& painter, const Scene& scene) {
  double x = kMargin;
  for (std::size_t i = std::size(kPens); i-- > 0;) {
    x = DrawSign(painter, x, kPens[i].ink, kPens[i].width, kPens[i].name);
  }
  DrawSign(painter, x, kReference, kReferenceWidth, "under them: " + ReferenceOf(scene).name);
}

}  // namespace

std::string Draw(const Scene& scene, const std::filesystem::path& file, draw::Format format,
                 int scale) {
  Painter painter(file, format, kWidth, kHeight, scale);
  painter.Fill({0, 0, kWidth, kHeight}, palette::kPaper);
  painter.Text(TitleText(scene), {kMargin, kMargin + 24}, kTitleFont, palette::kInk);
  painter.Text(SubtitleText(scene), {kMargin, kMargin + 54}, kLineFont, palette::kSoftInk,
               Align::kLeft, kWidth - 2 * kMargin);
  DrawPlot(painter, scene, kLeft, Axis::kPlain);
  DrawPlot(painter, scene, kRight, Axis::kLogarithmic);
  DrawLegend(painter, scene);
  return painter.Finish();
}

}  // namespace quivord::colour
