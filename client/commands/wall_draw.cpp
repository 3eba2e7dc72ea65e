#include "commands.h"
#include "commands/wall_commands.h"
#include "device.h"
#include "drawing.h"
#include "wall/draw.h"

namespace ctl {
namespace {

namespace wall = quivord::wall;

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
  const WallRead read = ReadWall(context, WallDevice::Scope::kAll);
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

}  // namespace

const Command kWallDraw{
    "draw",
    "Draw the wall that the device holds",
    "  quivordctl wall draw wall.png\n"
    "  quivordctl wall draw wall.svg\n"
    "  quivordctl wall draw --pattern pattern.png\n",
    DeclareDraw,
};

}  // namespace ctl
