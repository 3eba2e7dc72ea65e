
#include "commands.h"
#include "commands/wall_commands.h"
#include "device.h"
#include "drawing.h"
#include "wall/draw.h"
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

struct DrawWords {
  Drawing drawing;
  bool pattern = false;
};

// The test pattern that the FPGA shows, or why there is none.
Answer ReadPattern(const Context& context, std::optional<wall::Pattern>* pattern) {
  namespace registers = ZEPH_MCUC::pattern;
  Exit exit = Exit::kDone;
  const auto device = Device::Open(context, exit);
  if (device == nullptr) return {exit, "", {}};
  Answer answer = device->Read(registers::kBase, registers::kUsed);
  if (!answer.done()) return answer;
  *pattern = wall::UnderstandPattern(std::span(answer.data).first<registers::kUsed>());
  if (!pattern->has_value()) {
    return {Exit::kRefused, "no pattern to draw; 'quivordctl pattern' shows one", {}};
  }
  return answer;
}

Exit Draw(Context& context, const DrawWords& words) {
  const auto format = words.drawing.format();
  if (!format.has_value()) return context.Fail(Exit::kWrongUse, kFormatRule);
  const WallRead read = ReadWall(context, Scope::kAll);
  if (!read.answer.done()) return context.Fail(read.answer);
  if (const auto obstacle = wall::DrawObstacle(read.wall)) {
    return context.Fail(Exit::kRefused, "nothing to draw: " + *obstacle);
  }
  std::optional<wall::Pattern> pattern;
  if (words.pattern) {
    const Answer answer = ReadPattern(context, &pattern);
    if (!answer.done()) return context.Fail(answer);
  }
  return EndDrawing(
      context, words.drawing,
      wall::Draw(read.wall, words.drawing.file, *format, words.drawing.scale, pattern));
}

Run DeclareDraw(CLI::App& app) {
  const auto words = std::make_shared<DrawWords>();
  AddPictureFile(app, words->drawing);
  AddPictureScale(app, words->drawing);
  app.add_flag("--pattern", words->pattern, "With the test pattern in place of the cables");
  return [words](Context& context) { return Draw(context, *words); };
}

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

const Command kWallDraw{
    "draw",
    "Draw the wall that the device holds",
    "  quivordctl wall draw wall.png\n"
    "  quivordctl wall draw wall.svg\n"
    "  quivordctl wall draw --pattern pattern.png\n",
    DeclareDraw,
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
