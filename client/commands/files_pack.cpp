// A configuration file built from a readable description.

#include "cardfiles/description.h"
#include "commands/files_commands.h"
#include "counted.h"
#include "written_files.h"

namespace ctl {
namespace {

namespace cardfiles = quivord::cardfiles;
using quivord::Counted;

struct Words {
  std::string description;
  std::string file;
};

Exit Pack(const Context& context, const Words& words) {
  const auto text = ReadLocal(words.description);
  if (!text) return context.Fail(text.error());
  const auto folder = std::filesystem::path(words.description).parent_path();
  const auto bytes = cardfiles::Compile(std::string(text.value().begin(), text.value().end()),
                                        [&folder](const std::string& name) {
                                          const auto read = ReadLocal(folder / name);
                                          return read ? std::optional(read.value()) : std::nullopt;
                                        });
  if (!bytes) return context.Fail(Exit::kWrongUse, words.description + ", " + bytes.error().text);
  const Exit written = WriteFile(context, words.file, bytes.value());
  if (written != Exit::kDone) return written;
  const auto verdict = cardfiles::Check(bytes.value());
  context.out.Show(words.file + ": " + Counted(verdict.packs, "pack") + ", " +
                       Counted(bytes.value().size(), "byte") + ", sent in " +
                       std::to_string(verdict.pauses_ms) + " ms",
                   {{"file", words.file},
                    {"packs", verdict.packs},
                    {"bytes", bytes.value().size()},
                    {"pauses_ms", verdict.pauses_ms}});
  return Exit::kDone;
}

Run DeclarePack(CLI::App& app) {
  const auto words = std::make_shared<Words>();
  app.add_option("DESCRIPTION", words->description, "A text, a line a pack")->required();
  WritesFile(app.add_option("FILE", words->file, "The configuration file to write"))->required();
  return [words](Context& context) { return Pack(context, *words); };
}

}  // namespace

const Command kFilesPack{
    "pack",
    "Build a configuration file from a readable description",
    "  quivordctl files pack examples/card-file.txt start.rcfgx\n"
    "A description has a line a pack: the register of the card, the bytes for it, and how many ms\n"
    "to wait behind it beyond the usual 15:\n"
    "  0x02000001  99\n"
    "  0x04000000  fill 00 1024\n"
    "  0x04000400  file gamma.bin   wait 50\n"
    "A file's name counts from the description's folder. # begins a comment.\n",
    DeclarePack,
};

}  // namespace ctl
