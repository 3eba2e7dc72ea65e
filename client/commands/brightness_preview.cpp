#include <ctime>

#include "brightness/draw.h"
#include "brightness/words.h"
#include "commands.h"
#include "commands/brightness_commands.h"
#include "drawing.h"
#include "number_check.h"

namespace ctl {
namespace {

namespace brightness = quivord::brightness;

struct PreviewWords {
  Drawing drawing;
  std::string plan;
  std::string day;
  bool week = false;
  std::uint16_t noon = 0;
};

// Today as this computer counts it, 0 for Monday.
int Today() {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  localtime_r(&now, &parts);
  return (parts.tm_wday + 6) % 7;
}

// The plan that is to be drawn: a file's, or the device's.
quivord::Result<brightness::Plan> WantedPlan(Context& context, const PreviewWords& words) {
  if (!words.plan.empty()) return LoadPlan(words.plan);
  const PlanRead read = ReadPlan(context);
  if (read.answer.done()) return read.plan;
  return quivord::Error{read.answer.exit == Exit::kWrongUse ? quivord::Trouble::kWrongUse
                                                            : quivord::Trouble::kNoDaemon,
                        read.answer.text};
}

Exit Preview(Context& context, const PreviewWords& words) {
  const auto format = words.drawing.format();
  if (!format.has_value()) return context.Fail(Exit::kWrongUse, kFormatRule);
  const auto day = words.day.empty() ? std::optional<std::uint8_t>(words.week ? 0 : Today())
                                     : brightness::ParseDay(words.day);
  if (!day.has_value()) {
    return context.Fail(Exit::kWrongUse, "--day is mon, tue, wed, thu, fri, sat or sun");
  }
  const auto plan = WantedPlan(context, words);
  if (!plan) return context.Fail(plan.error());
  if (const auto obstacle = brightness::CourseObstacle(plan.value()); !obstacle.empty()) {
    return context.Fail(Exit::kRefused, "nothing to draw: " + obstacle);
  }
  const std::uint16_t noon = words.noon != 0 ? words.noon : brightness::NoonOf(plan.value());
  const auto course =
      brightness::CourseOf(plan.value(), *day, words.week ? brightness::kWeekDays : 1, noon);
  return EndDrawing(
      context, words.drawing,
      brightness::Draw(plan.value(), course, {words.drawing.file, *format, words.drawing.scale}));
}

Run DeclarePreview(CLI::App& app) {
  const auto words = std::make_shared<PreviewWords>();
  AddPictureFile(app, words->drawing);
  app.add_option("--plan", words->plan, "A plan's file (default: what the device holds)")
      ->type_name("FILE");
  app.add_flag("--week", words->week, "A week, a row a day");
  app.add_option("--day", words->day, "The day, or the week's first: mon to sun (default: today)")
      ->type_name("DAY");
  app.add_option("--noon", words->noon,
                 "Light at noon that the sensor is taken to see (default: where its map ends)")
      ->type_name("LUX")
      ->check(NumberFrom(1, 65534));
  AddPictureScale(app, words->drawing);
  return [words](Context& context) { return Preview(context, *words); };
}

}  // namespace

const Command kBrightnessPreview{
    "preview",
    "Draw the course of a day or a week, of a file or of what the device holds",
    "  quivordctl brightness preview day.png --plan examples/brightness-mix.json\n"
    "  quivordctl brightness preview --week week.svg\n"
    "Computed by the daemon's own calculations, as after a week under the plan, in the light of a\n"
    "  clear day.",
    DeclarePreview,
};

}  // namespace ctl
