#include "commands.h"
#include "commands/wall_commands.h"
#include "subcommands.h"

namespace ctl {
namespace {

Run Declare(CLI::App& app) {
  static constexpr const Command* kCommands[] = {
      &kWallConfigure, &kWallAdvanced, &kWallShow, &kWallDraw, &kWallExport,
  };
  return DeclareSubcommands(app, kCommands, &kWallShow);
}

}  // namespace

const Command kWallCommand{
    "wall",
    "Lay out a wall of cabinets, show it, draw it",
    "  quivordctl wall configure --rows 4 --columns 3 --cables top-left-rows --per-cable 6 --wait\n"
    "  quivordctl wall draw wall.png\n",
    Declare,
};

}  // namespace ctl
