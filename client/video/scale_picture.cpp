#include "video/scale_picture.h"

#include <algorithm>

#include "draw/palette.h"
#include "video/mode.h"
#include "wall/words.h"

namespace quivord::video {
namespace {

using namespace draw;
using wall::SizeText;
using ZEPH_MCUC::pos_t;

constexpr double kWidth = 1180;
constexpr double kMargin = 44;
constexpr double kPanelTop = 132;
constexpr double kPanelHeight = 400;
constexpr double kHeight = kPanelTop + kPanelHeight + 96;
constexpr Box kSourcePanel{kMargin, kPanelTop, 330, kPanelHeight};
constexpr Box kScreenPanel{558, kPanelTop, kWidth - kMargin - 558, kPanelHeight};
constexpr double kPanelPad = 40;
constexpr int kScale = 2;  // pixels of a PNG a unit

constexpr Font kTitleFont{28, true};
constexpr Font kLineFont{15};
constexpr Font kHeadFont{13, true};
constexpr Font kLabelFont{13};
constexpr Font kNumberFont{16, true};

constexpr double kLeastLabelled = 120;  // width of a layer that bears its size
constexpr std::size_t kShown = 0;       // the palette's colour of what is shown
constexpr Colour kOutside = Rgb(0xE8590C);

Box BoxOf(const pos_t& r) { return {double(r.x), double(r.y), double(r.width), double(r.height)}; }

Box Around(const Box& a, const Box& b) {
  const double x = std::min(a.x, b.x), y = std::min(a.y, b.y);
  return {x, y, std::max(a.right(), b.right()) - x, std::max(a.bottom(), b.bottom()) - y};
}

Box Common(const Box& a, const Box& b) {
  const double x = std::max(a.x, b.x), y = std::max(a.y, b.y);
  return {x, y, std::min(a.right(), b.right()) - x, std::min(a.bottom(), b.bottom()) - y};
}

std::string SizeOf(const pos_t& r) {
  return SizeText(static_cast<unsigned>(r.width), static_cast<unsigned>(r.height));
}

// Puts rectangles of pixels into a panel, all in one scale, in its middle.
class Stage {
 public:
  Stage(const Box& all, const Box& panel) : all_(all) {
    const Box room = panel.inset(kPanelPad);
    scale_ = std::min(room.width / all.width, room.height / all.height);
    origin_ = {room.centre().x - all.width * scale_ / 2, room.centre().y - all.height * scale_ / 2};
  }
  // Never thinner than a stroke, so that it can be seen.
  Box Place(const Box& r) const {
    return {origin_.x + (r.x - all_.x) * scale_, origin_.y + (r.y - all_.y) * scale_,
            std::max(r.width * scale_, 2.0), std::max(r.height * scale_, 2.0)};
  }

 private:
  Box all_;
  double scale_;
  Point origin_;
};

void DrawPanel(const Box& panel, const std::string& head, const std::string& below,
               Painter& painter) {
  painter.Fill(panel, palette::kStage, 12);
  painter.Text(head, {panel.x, panel.y - 12}, kHeadFont, palette::kSoftInk);
  painter.Text(below, {panel.x, panel.bottom() + 26}, kLabelFont, palette::kSoftInk, Align::kLeft,
               panel.width);
}

void DrawSource(const ScalePlan& plan, Painter& painter) {
  DrawPanel(kSourcePanel, "SOURCE", "the part that is shown: " + RectangleText(plan.source),
            painter);
  const Box box = Stage(BoxOf(plan.source), kSourcePanel).Place(BoxOf(plan.source));
  painter.Fill(box, palette::Tint(kShown));
  painter.Stroke(box, palette::OfPort(kShown), 2);
  painter.Text(SizeOf(plan.source),
               {box.centre().x, box.centre().y + Painter::CapHeight(kNumberFont) / 2}, kNumberFont,
               palette::OfPort(kShown), Align::kCentre, box.width - 12);
}

// A layer too small for its size stands above its name alone.
void DrawLayerLabel(const ScalePlan& plan, const Box& frame, const Colour& colour,
                    Painter& painter) {
  if (frame.width < kLeastLabelled) {
    painter.Text("layer", {frame.centre().x, frame.bottom() + 16}, kLabelFont, colour,
                 Align::kCentre);
    return;
  }
  painter.Text("layer " + SizeOf(plan.layer),
               {frame.centre().x, frame.centre().y + Painter::CapHeight(kNumberFont) / 2},
               kNumberFont, colour, Align::kCentre, frame.width - 12);
}

// The output region lies below, what of the layer falls into it is filled, the rest is an outline.
void DrawScreen(const ScalePlan& plan, Painter& painter) {
  const Box layer = BoxOf(plan.layer);
  const Box output = BoxOf(plan.output);
  const Stage stage(Around(layer, output), kScreenPanel);
  const Box region = stage.Place(output);
  painter.Fill(region, palette::kPaper);
  const Box shown = Common(layer, output);
  if (shown.width > 0 && shown.height > 0) painter.Fill(stage.Place(shown), palette::Tint(kShown));
  painter.Stroke(region, palette::kInk, 2);
  const Colour colour = plan.valid() ? palette::OfPort(kShown) : kOutside;
  const Box frame = stage.Place(layer);
  painter.Stroke(frame, colour, 2);
  DrawLayerLabel(plan, frame, colour, painter);
  // On the side where the layer's frame doesn't cross it.
  const bool above = frame.y >= region.y || frame.bottom() > region.bottom();
  painter.Text("output " + SizeOf(plan.output),
               {region.right(), above ? region.y - 9 : region.bottom() + 18}, kLabelFont,
               palette::kSoftInk, Align::kRight);
}

// What one scaler does, on the road from the source to the screen.
template <class Image>
void DrawScaler(const char* head, const char* does, const Image& image, double y,
                Painter& painter) {
  const Box chip{kSourcePanel.right() + 24, y, kScreenPanel.x - kSourcePanel.right() - 48, 112};
  painter.Fill(chip, palette::kPaper, 10);
  painter.Stroke(chip, palette::kHairline, 1.5, 10);
  const auto line = [&](int n, const std::string& text, const Font& font, const Colour& colour) {
    painter.Text(text, {chip.centre().x, chip.y + 26 + 24 * n}, font, colour, Align::kCentre,
                 chip.width - 12);
  };
  constexpr uint32_t kOne = 0x10000;
  const bool passes = image.h_ratio == kOne && image.v_ratio == kOne;
  line(0, std::string(head) + (passes ? "PASSES" : does), kHeadFont, palette::kSoftInk);
  line(1, "step " + FixedText(image.h_ratio) + " × " + FixedText(image.v_ratio), kLabelFont,
       palette::kInk);
  line(2, SizeText(image.vin_h_disp, image.vin_v_disp), kLabelFont, palette::kSoftInk);
  line(3, "→ " + SizeText(image.vout_h_disp, image.vout_v_disp), kLabelFont, palette::kSoftInk);
}

void DrawRoad(const ScalePlan& plan, Painter& painter) {
  const double middle = kSourcePanel.centre().y;
  const Point from{kSourcePanel.right() + 6, middle}, to{kScreenPanel.x - 6, middle};
  painter.Line(from, to, plan.valid() ? palette::kFaintInk : palette::kHairline, 2);
  painter.Chevron(to, 1, 0, 8, plan.valid() ? palette::kFaintInk : palette::kHairline, 2);
  if (!plan.valid()) return;
  DrawScaler("FRONT ", "SHRINKS", plan.images.scaler_in, middle - 136, painter);
  DrawScaler("BACK ", "ENLARGES", plan.images.scaler_out, middle + 24, painter);
}

std::string Subtitle(const ScalePlan& plan) {
  if (!plan.valid()) return "Not possible: " + Obstacle(plan);
  const auto& out = plan.images.scaler_out;
  return "Scaler " + std::to_string(plan.scaler) + "; the output shows " +
         SizeText(out.vout_h_disp, out.vout_v_disp) + " of the layer, from (" +
         std::to_string(out.vout_start_h_pos) + ", " + std::to_string(out.vout_start_v_pos) +
         ") on";
}

}  // namespace

std::string DrawScaling(const ScalePlan& plan, const std::filesystem::path& file, Format format) {
  Painter painter(file, format, kWidth, kHeight, kScale);
  painter.Fill({0, 0, kWidth, kHeight}, palette::kPaper);
  painter.Text("From source to screen", {kMargin, 60}, kTitleFont, palette::kInk);
  painter.Text(Subtitle(plan), {kMargin, 86}, kLineFont,
               plan.valid() ? palette::kSoftInk : kOutside);
  DrawSource(plan, painter);
  DrawPanel(kScreenPanel, "SCREEN",
            "layer " + RectangleText(plan.layer) + ", output region " + RectangleText(plan.output),
            painter);
  DrawScreen(plan, painter);
  DrawRoad(plan, painter);
  return painter.Finish();
}

}  // namespace quivord::video
