#include "draw/paint.h"

#include <cairo-svg.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <fstream>
#include <numbers>

#include "file_fault.h"

// The font library keeps what it has found until the process ends; a leak check needn't tell.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig\n"; }

namespace quivord::draw {
namespace {

constexpr char kTypeface[] = "Inter";  // the system's own sans serif where it isn't installed
constexpr std::size_t kTried = 4096;   // bytes that show whether a file has room
constexpr double kRightAngle = std::numbers::pi / 2;

cairo_surface_t* MakeSurface(const std::filesystem::path& file, Format format, double width,
                             double height, int scale) {
  if (format == Format::kSvg) return cairo_svg_surface_create(file.c_str(), width, height);
  const auto pixels = [scale](double units) { return static_cast<int>(std::ceil(units * scale)); };
  return cairo_image_surface_create(CAIRO_FORMAT_RGB24, pixels(width), pixels(height));
}

}  // namespace

std::optional<Format> FormatOf(const std::filesystem::path& file) {
  if (file.extension() == ".png") return Format::kPng;
  if (file.extension() == ".svg") return Format::kSvg;
  return std::nullopt;
}

Painter::Painter(const std::filesystem::path& file, Format format, double width, double height,
                 int scale)
    : file_(file),
      format_(format),
      surface_(MakeSurface(file, format, width, height, scale)),
      context_(cairo_create(surface_.get())) {
  if (format == Format::kPng) cairo_scale(context_.get(), scale, scale);
  cairo_set_line_cap(context_.get(), CAIRO_LINE_CAP_ROUND);
  cairo_set_line_join(context_.get(), CAIRO_LINE_JOIN_ROUND);
}

void Painter::Use(const Colour& colour) {
  cairo_set_source_rgba(context_.get(), colour.red, colour.green, colour.blue, colour.alpha);
}

void Painter::Use(const Font& font) {
  cairo_select_font_face(context_.get(), kTypeface, CAIRO_FONT_SLANT_NORMAL,
                         font.bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(context_.get(), font.size);
}

void Painter::Outline(const Box& box, double radius) {
  cairo_t* const context = context_.get();
  const double r = std::min({radius, box.width / 2, box.height / 2});
  if (r <= 0) {
    cairo_rectangle(context, box.x, box.y, box.width, box.height);
    return;
  }
  cairo_new_sub_path(context);
  cairo_arc(context, box.right() - r, box.y + r, r, -kRightAngle, 0);
  cairo_arc(context, box.right() - r, box.bottom() - r, r, 0, kRightAngle);
  cairo_arc(context, box.x + r, box.bottom() - r, r, kRightAngle, 2 * kRightAngle);
  cairo_arc(context, box.x + r, box.y + r, r, 2 * kRightAngle, 3 * kRightAngle);
  cairo_close_path(context);
}

void Painter::Fill(const Box& box, const Colour& colour, double radius) {
  Use(colour);
  Outline(box, radius);
  cairo_fill(context_.get());
}

void Painter::Stroke(const Box& box, const Colour& colour, double width, double radius) {
  Use(colour);
  cairo_set_line_width(context_.get(), width);
  Outline(box, radius);
  cairo_stroke(context_.get());
}

void Painter::Disc(Point centre, double radius, const Colour& colour) {
  Use(colour);
  cairo_arc(context_.get(), centre.x, centre.y, radius, 0, 4 * kRightAngle);
  cairo_fill(context_.get());
}

void Painter::Line(Point from, Point to, const Colour& colour, double width) {
  Use(colour);
  cairo_set_line_width(context_.get(), width);
  cairo_move_to(context_.get(), from.x, from.y);
  cairo_line_to(context_.get(), to.x, to.y);
  cairo_stroke(context_.get());
}

void Painter::Path(std::span<const Point> points) {
  cairo_new_path(context_.get());
  for (const Point& point : points) cairo_line_to(context_.get(), point.x, point.y);
}

void Painter::Polyline(std::span<const Point> points, const Colour& colour, double width,
                       Dash dash) {
  constexpr double kDots[] = {0.1, 4};
  constexpr double kDashes[] = {5, 4};
  Use(colour);
  cairo_set_line_width(context_.get(), width);
  if (dash != Dash::kNone) {
    cairo_set_dash(context_.get(), dash == Dash::kDots ? kDots : kDashes, 2, 0);
  }
  Path(points);
  cairo_stroke(context_.get());
  cairo_set_dash(context_.get(), nullptr, 0, 0);
}

void Painter::Polygon(std::span<const Point> points, const Colour& colour) {
  Use(colour);
  Path(points);
  cairo_close_path(context_.get());
  cairo_fill(context_.get());
}

void Painter::Chevron(Point tip, double dx, double dy, double size, const Colour& colour,
                      double width) {
  const double length = std::hypot(dx, dy);
  if (length == 0) return;
  const double x = dx / length * size;
  const double y = dy / length * size;
  Use(colour);
  cairo_set_line_width(context_.get(), width);
  cairo_move_to(context_.get(), tip.x - x - y, tip.y - y + x);
  cairo_line_to(context_.get(), tip.x, tip.y);
  cairo_line_to(context_.get(), tip.x - x + y, tip.y - y - x);
  cairo_stroke(context_.get());
}

double Painter::Width(const std::string& text, const Font& font) {
  Use(font);
  cairo_text_extents_t extents;
  cairo_text_extents(context_.get(), text.c_str(), &extents);
  return extents.x_advance;
}

void Painter::Text(const std::string& text, Point at, const Font& font, const Colour& colour,
                   Align align, double most) {
  const double natural = Width(text, font);
  const double shrink = natural > most ? most / natural : 1;
  const double width = natural * shrink;
  const double before = align == Align::kLeft ? 0 : align == Align::kRight ? width : width / 2;
  Use(Font{font.size * shrink, font.bold});
  Use(colour);
  cairo_move_to(context_.get(), at.x - before, at.y);
  cairo_show_text(context_.get(), text.c_str());
}

void Painter::TextUpwards(const std::string& text, Point at, const Font& font,
                          const Colour& colour) {
  cairo_save(context_.get());
  cairo_translate(context_.get(), at.x + CapHeight(font) / 2, at.y);
  cairo_rotate(context_.get(), -kRightAngle);
  Text(text, {0, 0}, font, colour, Align::kCentre);
  cairo_restore(context_.get());
}

std::string Painter::Finish() {
  cairo_status_t status = cairo_status(context_.get());
  if (status == CAIRO_STATUS_SUCCESS && format_ == Format::kPng) {
    status = cairo_surface_write_to_png(surface_.get(), file_.c_str());
  }
  cairo_surface_finish(surface_.get());
  if (status == CAIRO_STATUS_SUCCESS) status = cairo_surface_status(surface_.get());
  if (status == CAIRO_STATUS_SUCCESS) return "";
  if (status != CAIRO_STATUS_WRITE_ERROR) {
    return file_.string() + ": " + cairo_status_to_string(status);
  }
  errno = 0;  // the library's fault says no reason; to try again does
  std::ofstream again(file_, std::ios::binary);
  again << std::string(kTried, ' ') << std::flush;
  return CannotWrite(file_, errno);
}

}  // namespace quivord::draw
