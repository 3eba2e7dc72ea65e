// `wall show` and `wall export`: the wall that a device holds, for people and as a file.
#include "commands.h"
#include "commands/wall_commands.h"
#include "drawing.h"
#include "wall/text.h"

namespace ctl {
namespace {

namespace wall = quivord::wall;
using Scope = WallDevice::Scope;

Exit Show(Context& context) {
  const WallRead read = ReadWall(context, Scope::kAll);
  if (!read.answer.done()) return context.Fail(read.answer);
  context.out.Show(wall::ShowText(read.wall), wall::ShowJson(read.wall));
  return Exit::kDone;
}

Run DeclareShow(CLI::App& /*app*/) { return Show; }

// Why a wall can't be a file.
std::optional<std::string> ExportObstacle(const wall::Wall& now) {
  if (now.kind == wall::Kind::kSoftware) {
    return "the wall was laid out by a configuration tool and has no numbers";
  }
  if (now.kind == wall::Kind::kNone) {
    return "the wall is not configured yet; quivordctl wall configure does that";
  }
  return std::nullopt;
}

Exit ExportWall(Context& context, const std::string& file) {
  const WallRead read = ReadWall(context, Scope::kRecord);
  if (!read.answer.done()) return context.Fail(read.answer);
  if (const auto obstacle = ExportObstacle(read.wall)) {
    return context.Fail(Exit::kRefused, *obstacle);
  }
  const nlohmann::ordered_json object = read.wall.kind == wall::Kind::kSmart
                                            ? wall::SmartJson(read.wall.smart)
                                            : wall::AdvancedJson(read.wall.records);
  return Export(context, file, object.dump(2), object);
}

Run DeclareExport(CLI::App& app) { return DeclareExporting(app, ExportWall); }

}  // namespace

const Command kWallShow{
    "show",
    "Show the wall that the device holds, port by port",
    "  quivordctl wall show\n"
    "  quivordctl --json wall show\n",
    DeclareShow,
};

const Command kWallExport{
    "export",
    "Write the wall as a file, for this device or another",
    "  quivordctl wall export wall.json && quivordctl --board /tmp/other wall configure wall.json\n"
    "  quivordctl wall export\n"
    "A file of kind smart is for wall configure, one of kind advanced for wall advanced.",
    DeclareExport,
};

}  // namespace ctl
