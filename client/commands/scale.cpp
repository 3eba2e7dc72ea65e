#include "commands.h"
#include "draw/paint.h"
#include "number_check.h"
#include "table.h"
#include "video/mode.h"
#include "video/scale_picture.h"
#include "video/scale_plan.h"
#include "written_files.h"

namespace ctl {
namespace {

namespace video = quivord::video;

struct Words {
  std::string source, layer, output;
  unsigned scaler = ZEPH_MCUC::kLowQualityScaler;
  std::string file;
};

Exit Show(Context& context, const Words& words) {
  const auto source = video::ParseRectangle(words.source);
  const auto layer = video::ParseRectangle(words.layer);
  const auto output = video::ParseRectangle(words.output.empty() ? words.layer : words.output);
  if (!source || !layer || !output) return context.Fail(Exit::kWrongUse, video::kRectangleRule);
  if (source->x < 0 || source->y < 0) {
    return context.Fail(Exit::kWrongUse, "a source has no pixels left of it or above it");
  }
  const auto format = quivord::draw::FormatOf(words.file);
  if (!words.file.empty() && !format) {
    return context.Fail(Exit::kWrongUse, "the picture's file ends in .png or .svg");
  }
  video::ScalePlan plan{.scaler = static_cast<std::uint8_t>(words.scaler),
                        .source = *source,
                        .layer = *layer,
                        .output = *output};
  video::Calculate(plan);
  if (!words.file.empty()) {
    const std::string fault = video::DrawScaling(plan, words.file, *format);
    if (!fault.empty()) return context.Fail(Exit::kWrongUse, fault);
  }
  if (!plan.valid()) return context.Fail(Exit::kRefused, video::Obstacle(plan));
  auto object = video::PlanJson(plan);
  if (!words.file.empty()) object["file"] = words.file;
  context.out.Show(Columns(video::PlanRows(plan)), object);
  return Exit::kDone;
}

Run Declare(CLI::App& app) {
  const auto words = std::make_shared<Words>();
  app.add_option("--source", words->source, "Part of the source to show, WxH or WxH+X+Y")
      ->type_name("RECT")
      ->required();
  app.add_option("--layer", words->layer, "Where it is to lie")->type_name("RECT")->required();
  app.add_option("--output", words->output,
                 "Region that the output drives (default: the layer's own)")
      ->type_name("RECT");
  app.add_option("--scaler", words->scaler, "Scaler: 0 to 2 of medium quality, 3 the preview's")
      ->type_name("N")
      ->check(NumberFrom(0, 3))
      ->capture_default_str();
  WritesFile(app.add_option("--draw", words->file, "Draw the rectangles into a .png or .svg"))
      ->type_name("FILE");
  return [words](Context& context) { return Show(context, *words); };
}

}  // namespace

const Command kScaleCommand{
    "scale",
    "Show how a source is scaled into a window; asks no device",
    "  quivordctl scale --source 1920x1080 --layer 960x540+100+50 --output 1920x1080\n"
    "  quivordctl scale --source 3840x2160 --layer 2400x1350-200+0 --output 1920x1080 "
    "--draw scale.png\n",
    Declare,
};

}  // namespace ctl
