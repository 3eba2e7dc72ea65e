#include "colour/draw.h"
#include "commands/gamma_commands.h"
#include "commands/picture_mode.h"
#include "drawing.h"

namespace ctl {
namespace {

Exit Draw(const Context& context, const Drawing& drawing) {
  const auto format = drawing.format();
  if (!format.has_value()) return context.Fail(Exit::kWrongUse, kFormatRule);
  Exit exit = Exit::kDone;
  const auto device = Device::Open(context, exit);
  if (device == nullptr) return exit;
  quivord::colour::Scene scene;
  PictureMode mode;
  Answer answer = ReadGamma(*device, &scene.set);
  if (answer.done()) answer = ReadMode(*device, &mode);
  if (!answer.done()) return context.Fail(answer);
  scene.mode = mode.set;
  scene.tables = mode.tables;
  return EndDrawing(context, drawing,
                    quivord::colour::Draw(scene, drawing.file, *format, drawing.scale));
}

Run Declare(CLI::App& app) {
  const auto drawing = std::make_shared<Drawing>();
  AddPictureFile(app, *drawing);
  AddPictureScale(app, *drawing);
  return [drawing](Context& context) { return Draw(context, *drawing); };
}

}  // namespace

const Command kGammaDraw{
    "draw",
    "Draw the tables that the FPGA holds, with the curve of their mode under them",
    "  quivordctl gamma draw gamma.png\n"
    "  quivordctl gamma draw gamma.svg\n",
    Declare,
};

}  // namespace ctl
