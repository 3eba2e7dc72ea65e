#include "wall/picture.h"

#include <algorithm>
#include <cmath>

namespace quivord::wall {
namespace {

constexpr double kMargin = 48;
constexpr double kTitle = 118;  // height of title and what stands below it
constexpr double kGap = 28;
constexpr double kStagePad = 36;
constexpr double kDimension = 36;  // room for the screen's size, above it and to its left
constexpr double kAround = 2 * kStagePad + kDimension;  // what the stage takes around the screen

constexpr double kPlateWidth = 232;
constexpr double kMostPlateWidth = 292;
constexpr double kPlateHeight = 82;
constexpr double kPlateGap = 16;
constexpr double kPlateRow = kPlateHeight + 12;
constexpr double kSocket = 34;
constexpr double kSocketStep = 42;
constexpr double kSocketRow = 54;  // with what stands below it
constexpr double kHeading = 26;
constexpr double kSigns = 78;          // side by side
constexpr double kStackedSigns = 160;  // one below the other
constexpr double kSideBySide = 430;    // width that they need for that
constexpr double kLeastWidth = 860;

// The shorter side of a cabinet, in units: what it should not fall below and not exceed, and what
// the whole wall should take.
constexpr double kLeastCell = 21;
constexpr double kMostCell = 168;
constexpr double kGoodWidth = 1240;
constexpr double kGoodHeight = 760;

// More than a file should hold, whatever a table says.
constexpr double kMostSide = 7000;
constexpr double kMostArea = 9e6;

// A cabinet is not drawn thinner than this; its wall is then no longer in scale.
constexpr double kMostSlender = 4;

// All that has to be on the picture, in pixels of the wall.
Size Extent(const Wall& wall) {
  Size all = wall.screen;
  for (const Port& port : wall.ports) {
    for (const Corner& corner : port.cabinets) {
      all.width = std::max(all.width, corner.x + wall.card.width);
      all.height = std::max(all.height, corner.y + wall.card.height);
    }
  }
  return all;
}

// Units a pixel, chosen by the cabinet's shorter side.
double ChooseScale(double width, double height, double shorter, double goodHeight) {
  const double good = std::min(kGoodWidth / width, goodHeight / height);
  double scale = std::clamp(good, kLeastCell / shorter, kMostCell / shorter);
  scale = std::min({scale, kMostSide / width, kMostSide / height});
  return std::min(scale, std::sqrt(kMostArea / (width * height)));
}

void ScaleScreen(const Wall& wall, double goodHeight, Picture& picture) {
  const double cardWidth = wall.card.width;
  const double cardHeight = wall.card.height;
  const double stretchX = std::max(1.0, cardHeight / cardWidth / kMostSlender);
  const double stretchY = std::max(1.0, cardWidth / cardHeight / kMostSlender);
  const Size extent = Extent(wall);
  const double width = extent.width * stretchX;
  const double height = extent.height * stretchY;
  const double shorter = std::min(cardWidth * stretchX, cardHeight * stretchY);
  const double scale = ChooseScale(width, height, shorter, goodHeight);
  picture.perPixelX = scale * stretchX;
  picture.perPixelY = scale * stretchY;
  picture.cell = scale * shorter;
  picture.screen = {0, 0, width * scale, height * scale};
}

std::size_t Across(double width, double step, std::size_t most) {
  const auto fit = static_cast<std::size_t>(std::max(1.0, std::floor(width / step)));
  return std::min(fit, std::max<std::size_t>(most, 1));
}

std::size_t Rows(std::size_t count, std::size_t across) { return (count + across - 1) / across; }

// Stacks plates, sockets and signs in a column of `width` from (x, y); returns where it ends.
double ArrangeLegend(const Wall& wall, double x, double y, double width, Picture& picture) {
  const std::size_t plates = wall.mainPorts();
  picture.platesAcross = Across(width + kPlateGap, kPlateWidth + kPlateGap, plates);
  const double platesHeight = static_cast<double>(Rows(plates, picture.platesAcross)) * kPlateRow;
  picture.plates = {x, y + kHeading, width, platesHeight};

  const bool together = width >= kPorts * kSocketStep + kGap + kSideBySide;
  const double socketsWidth = together ? kPorts * kSocketStep : width;
  picture.socketsAcross = Across(socketsWidth, kSocketStep, kPorts) >= kPorts ? kPorts : kPorts / 2;
  const double socketsHeight =
      static_cast<double>(Rows(kPorts, picture.socketsAcross)) * kSocketRow;
  picture.sockets = {x, picture.plates.bottom() + 12 + kHeading, socketsWidth, socketsHeight};
  picture.signsStacked = width < kSideBySide;
  if (together) {
    picture.signs = {x + socketsWidth + kGap, picture.sockets.y - kHeading,
                     width - socketsWidth - kGap, kSigns};
  } else {
    picture.signs = {x, picture.sockets.bottom() + 12, width,
                     picture.signsStacked ? kStackedSigns : kSigns};
  }
  return std::max(picture.sockets.bottom(), picture.signs.bottom());
}

void PlaceScreen(Picture& picture) {
  const double freeX = picture.stage.width - picture.screen.width - kDimension;
  const double freeY = picture.stage.height - picture.screen.height - kDimension;
  picture.screen.x = picture.stage.x + kDimension + freeX / 2;
  picture.screen.y = picture.stage.y + kDimension + freeY / 2;
}

void ArrangeBeside(const Wall& wall, Picture& picture) {
  const double top = kMargin + kTitle;
  const double legend = ArrangeLegend(wall, 0, top, kPlateWidth, picture) - top;
  ScaleScreen(wall, std::max(kGoodHeight, legend - kAround), picture);
  picture.width =
      std::max(kLeastWidth, picture.screen.width + kAround + kGap + kPlateWidth + 2 * kMargin);
  picture.title = {kMargin, kMargin, picture.width - 2 * kMargin, kTitle};
  const double x = picture.width - kMargin - kPlateWidth;
  ArrangeLegend(wall, x, top, kPlateWidth, picture);
  picture.stage = {kMargin, top, x - kGap - kMargin,
                   std::max(picture.screen.height + kAround, legend)};
  picture.height = picture.stage.bottom() + kMargin;
}

void ArrangeBelow(const Wall& wall, Picture& picture) {
  picture.width = std::max(kLeastWidth, picture.screen.width + kAround + 2 * kMargin);
  const double width = picture.width - 2 * kMargin;
  picture.title = {kMargin, kMargin, width, kTitle};
  picture.stage = {kMargin, picture.title.bottom(), width, picture.screen.height + kAround};
  picture.height =
      ArrangeLegend(wall, kMargin, picture.stage.bottom() + kGap, width, picture) + kMargin;
}

// Where the `n`-th of things in rows of `across` begins, in steps to the right and down.
Point InRows(std::size_t n, std::size_t across, double stepX, double stepY) {
  const std::size_t column = n % across;
  const std::size_t row = n / across;
  return {static_cast<double>(column) * stepX, static_cast<double>(row) * stepY};
}

}  // namespace

Box Picture::Cabinet(const Wall& wall, const Corner& corner) const {
  return {screen.x + corner.x * perPixelX, screen.y + corner.y * perPixelY,
          wall.card.width * perPixelX, wall.card.height * perPixelY};
}

Box Picture::Plate(std::size_t n) const {
  const double fit = (plates.width + kPlateGap) / static_cast<double>(platesAcross) - kPlateGap;
  const double plate = std::min(fit, kMostPlateWidth);
  const Point at = InRows(n, platesAcross, plate + kPlateGap, kPlateRow);
  return {plates.x + at.x, plates.y + at.y, plate, kPlateHeight};
}

Box Picture::Socket(std::size_t n) const {
  const Point at = InRows(n, socketsAcross, kSocketStep, kSocketRow);
  return {sockets.x + at.x, sockets.y + at.y, kSocket, kSocket};
}

Picture Arrange(const Wall& wall) {
  Picture picture;
  ScaleScreen(wall, kGoodHeight, picture);
  const Box& screen = picture.screen;
  const bool narrow = screen.height > screen.width * 0.8 || screen.width < kLeastWidth / 2;
  (narrow ? ArrangeBeside : ArrangeBelow)(wall, picture);
  PlaceScreen(picture);
  picture.width = std::ceil(picture.width);  // whole units, whole pixels
  picture.height = std::ceil(picture.height);
  return picture;
}

}  // namespace quivord::wall
