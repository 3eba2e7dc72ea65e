#include "colour/draw.h"
#include "gamma_commands.h"
#include "picture_mode.h"
#include "written_files.h"

namespace ctl {
namespace {

struct Words {
  std::string file;
  int scale = quivord::draw::kScale;
};

Exit Draw(const Context& context, const Words& words) {
  const auto format = quivord::draw::FormatOf(words.file);
  if (!format.has_value()) return context.Fail(Exit::kWrongUse, "FILE ends in .png or .svg");
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
  const std::string fault = quivord::colour::Draw(scene, words.file, *format, words.scale);
  if (!fault.empty()) return context.Fail(Exit::kWrongUse, words.file + ": " + fault);
  context.out.Show("drew " + words.file, {{"file", words.file}});
  return Exit::kDone;
}

Run Declare(CLI::App& app) {
  const auto words = std::make_shared<Words>();
  WritesFile(app.add_option("FILE", words->file, "Where the picture goes; .png or .svg says which"))
      ->required();
  app.add_option("--scale", words->scale, "How fine a PNG is")
      ->type_name("N")
      ->check(CLI::Range(1, quivord::draw::kMostScale))
      ->capture_default_str();
  return [words](Context& context) { return Draw(context, *words); };
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
