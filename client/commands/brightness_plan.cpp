#include "brightness/check.h"
#include "brightness/file.h"
#include "brightness/text.h"
#include "brightness/words.h"
#include "commands.h"
#include "commands/brightness_commands.h"

namespace ctl {
namespace {

namespace brightness = quivord::brightness;

struct PlanWords {
  std::string file;
  bool check = false;
};

// What is said of a plan; a warning stands in front of it.
void SayPlan(const Context& context, const brightness::Plan& plan, const std::string& text,
             std::size_t bytes) {
  const std::string note = brightness::WeekdayWarning(plan);
  context.out.Show((note.empty() ? "" : "note: " + note + "\n") + text,
                   {{"plan", brightness::RowOf(plan.kind).word},
                    {"bytes", bytes},
                    {"note", note.empty() ? nlohmann::json(nullptr) : nlohmann::json(note)}});
}

Exit SendPlan(Context& context, const PlanWords& words) {
  const auto plan = LoadPlan(words.file);
  if (!plan) return context.Fail(plan.error());
  const brightness::Bytes bytes = brightness::TableOf(plan.value());
  const std::string kind = brightness::RowOf(plan.value().kind).word;
  if (words.check) {
    SayPlan(context, plan.value(),
            words.file + " is fine: " + kind + ", " + std::to_string(bytes.size()) + " bytes",
            bytes.size());
    return Exit::kDone;
  }
  BrightnessDevice device(context);
  Answer answer = device.Connect();
  if (answer.done()) {
    answer = device.WriteTable(
        bytes, [&](std::size_t sent) { context.out.Progress("sent", sent, bytes.size()); });
  }
  if (!answer.done()) return context.Fail(answer);
  SayPlan(context, plan.value(),
          "in force and stored: " + std::string(brightness::RowOf(plan.value().kind).text),
          bytes.size());
  return Exit::kDone;
}

Run DeclarePlan(CLI::App& app) {
  const auto words = std::make_shared<PlanWords>();
  app.add_option("FILE", words->file, "The plan's file")->required();
  app.add_flag("--check", words->check, "Only say whether it is fine; send nothing");
  return [words](Context& context) { return SendPlan(context, *words); };
}

}  // namespace

const Command kBrightnessPlan{
    "plan",
    "Send a brightness plan; it is in force at once and survives a restart",
    "  quivordctl brightness plan examples/brightness-mix.json\n"
    "  quivordctl brightness plan --check plan.json\n"
    "Kinds: list (times), sensor (light), mix (both), serial and hardware (an outside device).\n"
    "docs/brightness.md shows a file of each.",
    DeclarePlan,
};

}  // namespace ctl
