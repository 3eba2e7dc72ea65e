#include "written_files.h"

#include <cerrno>
#include <fstream>
#include <vector>

#include "file_fault.h"

namespace ctl {
namespace {

constexpr std::string_view kBoard = "{board}";

std::vector<CLI::Option*>& Files() {
  static std::vector<CLI::Option*> files;
  return files;
}

}  // namespace

CLI::Option* WritesFile(CLI::Option* option) {
  Files().push_back(option);
  return option;
}

std::string FileOfAllBoards() {
  for (const CLI::Option* option : Files()) {
    if (option->count() == 0) continue;
    const std::string name = option->as<std::string>();
    if (name.find(kBoard) == name.npos) return name;
  }
  return "";
}

void NameWrittenFiles(const std::filesystem::path& board) {
  const std::string called = std::filesystem::absolute(board / ".").parent_path().filename();
  for (CLI::Option* option : Files()) {
    if (option->count() == 0) continue;
    auto name = option->as<std::string>();
    for (std::size_t at = 0; (at = name.find(kBoard, at)) != name.npos; at += called.size()) {
      name.replace(at, kBoard.size(), called);
    }
    option->clear();
    option->add_result(name);
    option->run_callback();
  }
}

Exit WriteFile(const Context& context, const std::string& file, std::string_view bytes) {
  errno = 0;
  std::ofstream stream(file, std::ios::binary);
  stream << bytes;
  if (stream.flush()) return Exit::kDone;
  return context.Fail(Exit::kWrongUse, quivord::CannotWrite(file, errno));
}

Exit WriteFile(const Context& context, const std::string& file,
               std::span<const std::uint8_t> bytes) {
  return WriteFile(context, file,
                   std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

}  // namespace ctl
