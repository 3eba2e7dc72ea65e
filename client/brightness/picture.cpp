#include "brightness/picture.h"

namespace quivord::brightness {
namespace {

constexpr double kWidth = 1280;
constexpr double kMargin = 48;
constexpr double kTitleHeight = 88;
constexpr double kTitleLine = 24;  // for what the sensors do
constexpr double kAxis = 62;       // left of a plot: its values, or its weekday
constexpr double kRightAxis = 46;
constexpr double kFlags = 64;  // over a plot, where there are nodes
constexpr double kNoFlags = 28;
constexpr double kDayHeight = 330;
constexpr double kWeekHeight = 76;
constexpr double kWeekGap = 16;
constexpr double kHours = 34;  // below the last plot
constexpr double kLightHeight = 64;
constexpr double kLightGap = 20;
constexpr double kLegendHeight = 34;
constexpr std::size_t kPlatesAcross = 4;
constexpr double kPlateGap = 12;
constexpr double kPlateHeight = 58;

std::size_t NodesOf(const Plan& plan) {
  return plan.kind == Kind::kList ? plan.list.size() : plan.nodes.size();
}

}  // namespace

draw::Box Picture::Plate(std::size_t n) const {
  const double across = static_cast<double>(kPlatesAcross);
  const double plateWidth = (plates.width - (across - 1) * kPlateGap) / across;
  return {plates.x + static_cast<double>(n % kPlatesAcross) * (plateWidth + kPlateGap),
          plates.y + static_cast<double>(n / kPlatesAcross) * (kPlateHeight + kPlateGap),
          plateWidth, kPlateHeight};
}

Picture Arrange(const Plan& plan, const Course& course) {
  Picture picture;
  picture.width = kWidth;
  const bool sensors = !plan.sensors.empty();
  picture.title = {kMargin, 40, kWidth - 2 * kMargin, kTitleHeight + (sensors ? kTitleLine : 0)};
  const double top = picture.title.bottom();
  const bool week = course.days() > 1;
  const std::size_t nodes = NodesOf(plan);
  double y = top + (week || nodes == 0 ? kNoFlags : kFlags);
  for (int day = 0; day < course.days(); ++day) {
    const double height = week ? kWeekHeight : kDayHeight;
    picture.plots.push_back(
        {{kMargin + kAxis, y, kWidth - 2 * kMargin - kAxis - kRightAxis, height},
         day * kDayMinutes});
    y += height + (week ? kWeekGap : 0);
  }
  y += kHours - (week ? kWeekGap : 0);
  if (ReachOf(plan).has_value()) {
    const draw::Box& box = picture.plots.back().box;
    picture.light = {box.x, y + kLightGap, box.width, kLightHeight};
    y = picture.light.bottom() + kLightGap;
  }
  picture.stage = {kMargin, top, kWidth - 2 * kMargin, y - top};
  picture.legend = {kMargin, y + 18, kWidth - 2 * kMargin, kLegendHeight};
  picture.plates = {kMargin, picture.legend.bottom() + 44, kWidth - 2 * kMargin, 0};
  picture.height =
      (nodes > 0 ? picture.Plate(nodes - 1).bottom() : picture.legend.bottom()) + kMargin;
  return picture;
}

}  // namespace quivord::brightness
