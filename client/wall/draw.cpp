#include "wall/draw.h"

#include <algorithm>

#include "counted.h"
#include "wall/draw_parts.h"
#include "wall/palette.h"
#include "wall/words.h"

namespace quivord::wall {
namespace {

constexpr Font kTitleFont{30, true};
constexpr Font kLineFont{15};
constexpr Font kDimensionFont{12, true};

std::string PortsText(const Wall& wall) {
  const std::size_t main = wall.mainPorts();
  const std::size_t repeating = wall.ports.size() - main;
  std::string text = Counted(main, "port") + (main == 1 ? " carries" : " carry") + " the wall";
  if (repeating > 0)
    text += ", " + std::to_string(repeating) + " more repeat" + (repeating == 1 ? "s" : "") +
            " what " + (main == 1 ? "it shows" : "they show");
  return text;
}

std::string WallText(const Wall& wall) {
  const std::string card = SizeText(wall.card.width, wall.card.height) + " px each";
  if (wall.kind != Kind::kSmart) return Counted(wall.cabinets(), "cabinet") + ", " + card;
  return Counted(wall.smart.rows, "row") + " and " + Counted(wall.smart.columns, "column") +
         " of cabinets, " + card;
}

std::string CablesText(const Wall& wall) {
  switch (wall.kind) {
    case Kind::kSmart: {
      const std::size_t most = LongestCable(wall);
      std::string text = "Cabled " + ModeText(wall.smart.mode) + ", " +
                         Counted(wall.smart.perCable, "cabinet") + " a cable";
      if (most > wall.smart.perCable) text += " rounded up to " + std::to_string(most);
      return text + "; " + PortsText(wall);
    }
    case Kind::kAdvanced:
      return "Each port placed by itself; " + PortsText(wall);
    case Kind::kSoftware:
      return "Laid out by a configuration tool; " + PortsText(wall);
    default:
      return "Nothing configured yet; " + PortsText(wall);
  }
}

// A length with its number in the middle; where there is no room for more, only the number.
void DrawDimension(Painter& painter, Point from, Point to, std::uint32_t pixels) {
  const std::string text = std::to_string(pixels) + " px";
  const bool upright = from.x == to.x;
  const Point middle{(from.x + to.x) / 2, (from.y + to.y) / 2};
  const double half = painter.Width(text, kDimensionFont) / 2 + 8;
  if (to.x - from.x + to.y - from.y > 2 * half + 8) {
    const double x = upright ? 0 : 1;
    const double y = upright ? 1 : 0;
    for (const Point& end : {from, to}) {
      painter.Line({end.x - 4 * y, end.y - 4 * x}, {end.x + 4 * y, end.y + 4 * x},
                   palette::kFaintInk, 1);
    }
    painter.Line(from, {middle.x - half * x, middle.y - half * y}, palette::kFaintInk, 1);
    painter.Line({middle.x + half * x, middle.y + half * y}, to, palette::kFaintInk, 1);
  }
  if (upright) {
    painter.TextUpwards(text, middle, kDimensionFont, palette::kSoftInk);
  } else {
    painter.Text(text, {middle.x, middle.y + Painter::CapHeight(kDimensionFont) / 2},
                 kDimensionFont, palette::kSoftInk, Align::kCentre);
  }
}

}  // namespace

void DrawTitle(const Wall& wall, const std::string& over, const Picture& picture,
               Painter& painter) {
  const Box& box = picture.title;
  const std::string title =
      "LED wall, " + SizeText(wall.screen.width, wall.screen.height) + " pixels";
  painter.Text(title, {box.x, box.y + 24}, kTitleFont, palette::kInk, Align::kLeft, box.width);
  painter.Text(WallText(wall), {box.x, box.y + 58}, kLineFont, palette::kSoftInk, Align::kLeft,
               box.width);
  painter.Text(over, {box.x, box.y + 82}, kLineFont, palette::kSoftInk, Align::kLeft, box.width);
}

void DrawStage(const Wall& wall, const Picture& picture, Painter& painter) {
  painter.Fill(picture.stage, palette::kStage, 12);
  const Box screen{picture.screen.x, picture.screen.y, wall.screen.width * picture.perPixelX,
                   wall.screen.height * picture.perPixelY};
  painter.Fill(screen, palette::kScreen, 2);
  const double x = screen.x - 24;
  const double y = screen.y - 24;
  DrawDimension(painter, {screen.x, y}, {screen.right(), y}, wall.screen.width);
  DrawDimension(painter, {x, screen.y}, {x, screen.bottom()}, wall.screen.height);
}

std::optional<std::string> DrawObstacle(const Wall& wall) {
  if (wall.card.empty()) return "the device knows no card size, so cabinets have no size";
  if (wall.screen.empty()) return "the device's screen has no size";
  return std::nullopt;
}

std::string Draw(const Wall& wall, const std::filesystem::path& file, Format format, int scale,
                 const std::optional<Pattern>& pattern) {
  const Picture picture = Arrange(wall);
  Painter painter(file, format, picture.width, picture.height, scale);
  const auto each = [&](auto part) {
    for (const Port& port : wall.ports) {
      if (port.main()) part(wall, port, picture, painter);
    }
  };
  painter.Fill({0, 0, picture.width, picture.height}, palette::kPaper);
  DrawTitle(wall, pattern ? ShownText(*pattern, picture) : CablesText(wall), picture, painter);
  DrawStage(wall, picture, painter);
  each(DrawCabinets);
  if (pattern) {
    DrawPattern(wall, *pattern, picture, painter);
  } else {
    each(DrawCable);
    DrawSigns(wall, picture, painter);
  }
  DrawLegend(wall, picture, painter);
  return painter.Finish();
}

}  // namespace quivord::wall
