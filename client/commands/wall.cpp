#include "commands.h"
#include "commands/wall_commands.h"
#include "json/load.h"
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

WallRead ReadWall(Context& context, WallDevice::Scope scope) {
  const auto client = ConnectForSender(context, "a wall");
  if (!client) return {AnswerOf(client.error()), {}};
  const auto device = std::make_unique<WallDevice>(RegistersOf(context.options, *client.value()));
  const auto read = device->Read(scope);
  if (!read) return {AnswerOf(read), {}};
  return {{}, quivord::wall::Understand(device->bytes)};
}

quivord::Result<quivord::wall::WallFile> LoadWall(const std::filesystem::path& file) {
  return quivord::json::Load(file, "a wall", quivord::wall::ParseFile);
}

const Command kWallCommand{
    "wall",
    "Lay out a wall of cabinets, show it, draw it",
    "  quivordctl wall configure --rows 4 --columns 3 --cables top-left-rows --per-cable 6 --wait\n"
    "  quivordctl wall draw wall.png\n",
    Declare,
};

}  // namespace ctl
