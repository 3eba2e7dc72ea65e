// `brightness show` and `brightness export`: the plan that a device holds, in words and as a file.
#include "brightness/file.h"
#include "brightness/text.h"
#include "brightness/words.h"
#include "commands.h"
#include "commands/brightness_commands.h"
#include "drawing.h"

namespace ctl {
namespace {

namespace brightness = quivord::brightness;

Exit Show(Context& context) {
  const PlanRead read = ReadPlan(context);
  if (!read.answer.done()) return context.Fail(read.answer);
  context.out.Show(brightness::ShowText(read.plan, read.now),
                   brightness::ShowJson(read.plan, read.now));
  return Exit::kDone;
}

Run DeclareShow(CLI::App& /*app*/) { return Show; }

Exit ExportPlan(Context& context, const std::string& file) {
  const PlanRead read = ReadPlan(context);
  if (!read.answer.done()) return context.Fail(read.answer);
  if (read.plan.kind == brightness::Kind::kNone) {
    return context.Fail(Exit::kRefused, "there is no plan; quivordctl brightness plan sends one");
  }
  return Export(context, file, brightness::FileText(read.plan), brightness::PlanJson(read.plan));
}

Run DeclareExport(CLI::App& app) { return DeclareExporting(app, ExportPlan); }

}  // namespace

const Command kBrightnessShow{
    "show",
    "Show the plan that the device holds, and what is in force",
    "  quivordctl brightness show\n"
    "  quivordctl --json brightness show\n",
    DeclareShow,
};

const Command kBrightnessExport{
    "export",
    "Write the plan that the device holds as a file",
    "  quivordctl brightness export plan.json\n"
    "  quivordctl brightness export plan.json && quivordctl --board /tmp/other brightness plan "
    "plan.json\n"
    "Sent to a device, the file gives the same table, byte for byte.",
    DeclareExport,
};

}  // namespace ctl
