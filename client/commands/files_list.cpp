#include "commands/files_commands.h"
#include "table.h"

namespace ctl {
namespace {

using quivord::cardfiles::Entry;

Exit List(const Context& context) {
  Exit exit = Exit::kDone;
  const auto device = Device::Open(context, exit);
  if (device == nullptr) return exit;
  const Listed listed = ListFiles(*device);
  if (!listed.answer.done()) return context.Fail(listed.answer);
  std::vector<std::vector<std::string>> rows = {{"file", "bytes", "name"}};
  nlohmann::json files = nlohmann::json::array();
  for (std::size_t i = 0; i < listed.entries.size(); ++i) {
    const Entry& entry = listed.entries[i];
    const std::string length = entry.length == 0 ? "?" : std::to_string(entry.length);
    rows.push_back({std::to_string(i), length, NameOf(entry)});
    files.push_back({{"number", i}, {"name", entry.name}, {"bytes", entry.length}});
  }
  context.out.Show(files.empty() ? "the device keeps no file" : Columns(rows), {{"files", files}});
  return Exit::kDone;
}

}  // namespace

const Command kFilesList{
    "list",
    "List the files that the device keeps",
    "  quivordctl files list\n",
    [](CLI::App& /*app*/) -> Run { return List; },
};

}  // namespace ctl
