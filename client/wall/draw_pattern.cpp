#include <algorithm>
#include <cmath>

#include "wall/draw_parts.h"
#include "wall/palette.h"

namespace quivord::wall {
namespace {

constexpr double kLeastStep = 7;  // units between two lines, or two dots
constexpr Colour kInk = palette::kInk;
constexpr Colour kFirst = Rgb(0xC2255C);

// How many steps lie between two that are drawn.
std::uint32_t Thinning(std::uint32_t step, double perPixel) {
  return static_cast<std::uint32_t>(std::max(std::ceil(kLeastStep / (step * perPixel)), 1.0));
}

// The places of a pattern along one side of the screen, as far as they are drawn.
struct Ruler {
  double first;
  double step;
  double end;

  template <class Mark>
  void Each(Mark mark) const {
    for (double at = first; at < end; at += step) mark(at);
  }
};

Ruler RulerOf(std::uint32_t first, std::uint32_t step, double begin, std::uint32_t pixels,
              double perPixel) {
  return {begin + first * perPixel, step * Thinning(step, perPixel) * perPixel,
          begin + pixels * perPixel};
}

void DrawBlocks(const Box& screen, const Ruler& x, const Ruler& y, Painter& painter) {
  x.Each([&](double at) { painter.Line({at, screen.y}, {at, screen.bottom()}, kInk, 1.2); });
  y.Each([&](double at) { painter.Line({screen.x, at}, {screen.right(), at}, kInk, 1.2); });
  const Box first{x.first, y.first, std::min(x.step, screen.right() - x.first),
                  std::min(y.step, screen.bottom() - y.first)};
  painter.Stroke(first.inset(1), kFirst, 2.6);
}

void DrawPixels(const Ruler& x, const Ruler& y, double perPixel, Painter& painter) {
  const double radius = std::clamp(perPixel / 2, 1.1, 4.0);
  y.Each([&](double top) {
    x.Each([&](double left) {
      painter.Disc({left + perPixel / 2, top + perPixel / 2}, radius, kInk);
    });
  });
  painter.Disc({x.first + perPixel / 2, y.first + perPixel / 2}, radius + 1.6, kFirst);
}

}  // namespace

void DrawPattern(const Wall& wall, const Pattern& pattern, const Picture& picture,
                 Painter& painter) {
  const Box screen{picture.screen.x, picture.screen.y, wall.screen.width * picture.perPixelX,
                   wall.screen.height * picture.perPixelY};
  const Ruler x =
      RulerOf(pattern.firstX, pattern.stepX, screen.x, wall.screen.width, picture.perPixelX);
  const Ruler y =
      RulerOf(pattern.firstY, pattern.stepY, screen.y, wall.screen.height, picture.perPixelY);
  if (x.first >= x.end || y.first >= y.end) return;
  if (pattern.kind == Pattern::Kind::kBlocks) {
    DrawBlocks(screen, x, y, painter);
  } else {
    DrawPixels(x, y, picture.perPixelX, painter);
  }
}

std::string ShownText(const Pattern& pattern, const Picture& picture) {
  const std::uint32_t x = Thinning(pattern.stepX, picture.perPixelX);
  const std::uint32_t y = Thinning(pattern.stepY, picture.perPixelY);
  std::string text = "Test pattern: " + PatternText(pattern) + " (marked)";
  if (x == 1 && y == 1) return text;
  return text + "; of " + std::to_string(x) + " by " + std::to_string(y) + " one is drawn";
}

}  // namespace quivord::wall
