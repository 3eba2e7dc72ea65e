// Drawing by cairo in the few shapes that our pictures need, to a PNG or an SVG file.
//
// Lengths are in units of the picture, from its upper left corner. One thread at a time.
#pragma once

#include <cairo.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace quivord::draw {

struct Colour {
  double red, green, blue, alpha = 1;
};

// 0xRRGGBB.
constexpr Colour Rgb(unsigned value) {
  return {(value >> 16 & 0xFF) / 255.0, (value >> 8 & 0xFF) / 255.0, (value & 0xFF) / 255.0};
}

// `part` of `a` over the rest of `b`.
constexpr Colour Mix(const Colour& a, const Colour& b, double part) {
  return {a.red * part + b.red * (1 - part), a.green * part + b.green * (1 - part),
          a.blue * part + b.blue * (1 - part), 1};
}

struct Point {
  double x, y;
};

struct Box {
  double x = 0, y = 0, width = 0, height = 0;

  double right() const { return x + width; }
  double bottom() const { return y + height; }
  Point centre() const { return {x + width / 2, y + height / 2}; }
  Box inset(double by) const { return {x + by, y + by, width - 2 * by, height - 2 * by}; }
};

enum class Align { kLeft, kCentre, kRight };

struct Font {
  double size;
  bool bold = false;
};

enum class Format { kPng, kSvg };

// The format that a file name asks for: .png or .svg; nothing for any other.
std::optional<Format> FormatOf(const std::filesystem::path& file);

inline constexpr int kScale = 2;  // pixels of a PNG a unit: sharp on fine screens and on paper
inline constexpr int kMostScale = 4;

enum class Dash { kNone, kDots, kDashes };

class Painter {
 public:
  // A picture of `width` by `height` units, of which a PNG makes `scale` pixels each. Where the
  // surface can't be made, `Finish` tells.
  Painter(const std::filesystem::path& file, Format format, double width, double height, int scale);

  void Fill(const Box& box, const Colour& colour, double radius = 0);
  void Stroke(const Box& box, const Colour& colour, double width, double radius = 0);
  void Disc(Point centre, double radius, const Colour& colour);
  void Line(Point from, Point to, const Colour& colour, double width);

  // The line through `points`, and the area inside it.
  void Polyline(std::span<const Point> points, const Colour& colour, double width,
                Dash dash = Dash::kNone);
  void Polygon(std::span<const Point> points, const Colour& colour);

  // A chevron of `size`, its tip at `tip`, pointing along (dx, dy).
  void Chevron(Point tip, double dx, double dy, double size, const Colour& colour, double width);

  // A line of text, shrunk where it would pass `most` units; `at` is on its base line. The second
  // one stands upright, read from below, and `at` is its middle.
  void Text(const std::string& text, Point at, const Font& font, const Colour& colour,
            Align align = Align::kLeft, double most = 1e9);
  void TextUpwards(const std::string& text, Point at, const Font& font, const Colour& colour);

  // In units; of the height of capitals over the base line.
  double Width(const std::string& text, const Font& font);
  static double CapHeight(const Font& font) { return font.size * 0.72; }

  // Writes the file. An empty text where that has worked, else why not, with the file's name.
  std::string Finish();

 private:
  struct Release {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
  };

  void Outline(const Box& box, double radius);
  void Path(std::span<const Point> points);
  void Use(const Colour& colour);
  void Use(const Font& font);

  std::filesystem::path file_;
  Format format_;
  std::unique_ptr<cairo_surface_t, Release> surface_;
  std::unique_ptr<cairo_t, Release> context_;
};

}  // namespace quivord::draw
