#include "drawing.h"

#include "number_check.h"
#include "written_files.h"

namespace ctl {

void AddPictureFile(CLI::App& app, Drawing& drawing) {
  WritesFile(
      app.add_option("FILE", drawing.file, "Where the picture goes; .png or .svg says which"))
      ->required();
}

void AddPictureScale(CLI::App& app, Drawing& drawing) {
  app.add_option("--scale", drawing.scale, "How fine a PNG is")
      ->type_name("N")
      ->check(NumberFrom(1, quivord::draw::kMostScale))
      ->capture_default_str();
}

Exit EndDrawing(const Context& context, const Drawing& drawing, const std::string& fault) {
  if (!fault.empty()) return context.Fail(Exit::kWrongUse, fault);
  context.out.Show("drew " + drawing.file, {{"file", drawing.file}});
  return Exit::kDone;
}

Run DeclareExporting(CLI::App& app, Exit (*run)(Context& context, const std::string& file)) {
  const auto file = std::make_shared<std::string>();
  WritesFile(app.add_option("FILE", *file, "Where it goes (default: standard output)"));
  return [file, run](Context& context) { return run(context, *file); };
}

Exit Export(const Context& context, const std::string& file, const std::string& text,
            const nlohmann::json& object) {
  if (file.empty()) {
    context.out.Show(text, object);
    return Exit::kDone;
  }
  const Exit written = WriteFile(context, file, text + '\n');
  if (written != Exit::kDone) return written;
  context.out.Show("wrote " + file, {{"file", file}});
  return Exit::kDone;
}

}  // namespace ctl
