
#include "commands.h"
#include "device.h"
#include "wall/draw.h"
#include "wall/text.h"
#include "wall_commands.h"
#include "written_files.h"

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
  std::string file;
  int scale = wall::kScale;
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
  const auto format = wall::FormatOf(words.file);
  if (!format.has_value()) return context.Fail(Exit::kWrongUse, "FILE ends in .png or .svg");
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
  const std::string fault = wall::Draw(read.wall, words.file, *format, words.scale, pattern);
  if (!fault.empty()) return context.Fail(Exit::kWrongUse, words.file + ": " + fault);
  context.out.Show("drew " + words.file, {{"file", words.file}});
  return Exit::kDone;
}

Run DeclareDraw(CLI::App& app) {
  const auto words = std::make_shared<DrawWords>();
  WritesFile(app.add_option("FILE", words->file, "Where the picture goes; .png or .svg says which"))
      ->required();
  app.add_option("--scale", words->scale, "How fine a PNG is")
      ->type_name("N")
      ->check(CLI::Range(1, wall::kMostScale))
      ->capture_default_str();
  app.add_flag("--pattern", words->pattern, "With the test pattern in place of the cables");
  return [words](Context& context) { return Draw(context, *words); };
}

struct ExportWords {
  std::string file;
};

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

Exit Export(Context& context, const ExportWords& words) {
  const WallRead read = ReadWall(context, Scope::kRecord);
  if (!read.answer.done()) return context.Fail(read.answer);
  if (const auto obstacle = ExportObstacle(read.wall)) {
    return context.Fail(Exit::kRefused, *obstacle);
  }
  const nlohmann::ordered_json object = read.wall.kind == wall::Kind::kSmart
                                            ? wall::SmartJson(read.wall.smart)
                                            : wall::AdvancedJson(read.wall.records);
  const std::string text = object.dump(2);
  if (words.file.empty()) {
    context.out.Show(text, object);
    return Exit::kDone;
  }
  const Exit written = WriteFile(context, words.file, text + '\n');
  if (written != Exit::kDone) return written;
  context.out.Show("wrote " + words.file, {{"file", words.file}});
  return Exit::kDone;
}

Run DeclareExport(CLI::App& app) {
  const auto words = std::make_shared<ExportWords>();
  WritesFile(app.add_option("FILE", words->file, "Where it goes (default: standard output)"));
  return [words](Context& context) { return Export(context, *words); };
}

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
