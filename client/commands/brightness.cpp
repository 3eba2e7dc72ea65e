#include "commands.h"
#include "commands/brightness_commands.h"
#include "subcommands.h"

namespace ctl {
namespace {

Run Declare(CLI::App& app) {
  static constexpr const Command* kCommands[] = {
      &kBrightnessSet, &kBrightnessPlan, &kBrightnessShow, &kBrightnessExport, &kBrightnessPreview,
  };
  return DeclareSubcommands(app, kCommands, &kBrightnessShow);
}

}  // namespace

const Command kBrightnessCommand{
    "brightness",
    "Set the screen's brightness, or the plan that it follows",
    "  quivordctl brightness set 60%\n"
    "  quivordctl brightness plan examples/brightness-mix.json\n"
    "  quivordctl brightness preview --week week.png\n",
    Declare,
};

}  // namespace ctl
