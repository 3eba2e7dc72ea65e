// `files put` and `files remove`: what changes the files that a device keeps.
#include <algorithm>

#include "commands/files_commands.h"
#include "counted.h"

namespace ctl {
namespace {

namespace cardfiles = quivord::cardfiles;
using cardfiles::File;
using cardfiles::Piece;
using quivord::Counted;
using Paths = std::vector<std::filesystem::path>;

// The plain files of a folder by their names; hidden ones don't count.
Paths FilesOf(const std::filesystem::path& folder) {
  Paths files;
  std::error_code failed;
  for (const auto& entry : std::filesystem::directory_iterator(folder, failed)) {
    const bool hidden = entry.path().filename().string().starts_with('.');
    if (!hidden && entry.is_regular_file(failed)) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

// What the words name: files, or those of a folder.
Paths Named(const std::vector<std::string>& words) {
  Paths paths;
  for (const std::string& word : words) {
    std::error_code failed;
    const bool folder = std::filesystem::is_directory(word, failed);
    const Paths more = folder ? FilesOf(word) : Paths{word};
    paths.insert(paths.end(), more.begin(), more.end());
  }
  return paths;
}

// The files, or why they can't be put.
quivord::Result<std::vector<File>> Load(const std::vector<std::string>& words) {
  const auto wrong = [](const std::string& text) {
    return quivord::Error{quivord::Trouble::kWrongUse, text};
  };
  std::vector<File> files;
  for (const auto& path : Named(words)) {
    auto bytes = ReadLocal(path);
    if (!bytes) return bytes.error();
    files.push_back({path.filename().string(), std::move(bytes.value())});
  }
  if (files.empty()) return wrong("there is no file to put");
  if (const auto obstacle = cardfiles::Obstacle(files)) return wrong(*obstacle);
  return files;
}

std::size_t BytesOf(const std::vector<Piece>& pieces) {
  std::size_t bytes = 0;
  for (const Piece& piece : pieces) bytes += piece.bytes.size();
  return bytes;
}

// Runs `step` for each piece, saying how far it is, until one fails.
template <class Do>
Answer ForEach(const Context& context, const std::vector<Piece>& pieces, const char* what,
               Do step) {
  const std::size_t all = BytesOf(pieces);
  std::size_t done = 0;
  for (const Piece& piece : pieces) {
    const Answer answer = step(piece);
    if (!answer.done()) return answer;
    done += piece.bytes.size();
    context.out.Progress(what, done, all);
  }
  return {};
}

Answer Compare(Device& device, const Piece& piece) {
  Answer answer = device.ReadBytes(piece.reg, piece.bytes.size());
  if (!answer.done() || answer.data == piece.bytes) return answer;
  return {Exit::kRefused, "the device has taken the files, but doesn't hold what was sent", {}};
}

Answer Upload(const Context& context, Device& device, const std::vector<File>& files) {
  const auto pieces = cardfiles::Upload(files);
  context.out.Step(Counted(files.size(), "file") + ", " + Counted(BytesOf(pieces), "byte"));
  Answer answer = ForEach(context, pieces, "sent",
                          [&](const Piece& piece) { return device.Send(piece.reg, piece.bytes); });
  if (answer.done()) answer = device.AwaitWork();
  if (!answer.done()) return answer;
  return ForEach(context, pieces, "checked",
                 [&](const Piece& piece) { return Compare(device, piece); });
}

Exit Put(const Context& context, const std::vector<std::string>& words) {
  const auto files = Load(words);
  if (!files) return context.Fail(files.error());
  Exit exit = Exit::kDone;
  const auto device = Device::Open(context, exit);
  if (device == nullptr) return exit;
  const Answer answer = Upload(context, *device, files.value());
  if (!answer.done()) return context.Fail(answer);
  nlohmann::json names = nlohmann::json::array();
  std::string text = "the device keeps " + Counted(files.value().size(), "file") + ":";
  for (std::size_t i = 0; i < files.value().size(); ++i) {
    text += "\n  " + std::to_string(i) + "  " + files.value()[i].name;
    names.push_back(files.value()[i].name);
  }
  context.out.Show(text, {{"files", names}});
  return Exit::kDone;
}

Exit Remove(const Context& context) {
  Exit exit = Exit::kDone;
  const auto device = Device::Open(context, exit);
  if (device == nullptr) return exit;
  const Piece piece = cardfiles::Removal();
  Answer answer = device->Send(piece.reg, piece.bytes);
  if (answer.done()) answer = device->AwaitWork();
  if (answer.done()) answer = Compare(*device, piece);
  if (!answer.done()) return context.Fail(answer);
  context.out.Show("the device keeps no file", {{"files", nlohmann::json::array()}});
  return Exit::kDone;
}

}  // namespace

const Command kFilesPut{
    "put",
    "Put files onto the device, in place of those that it keeps",
    "  quivordctl files put start.rcfgx night.rcfgx\n"
    "  quivordctl files put configurations/\n"
    "The first file is number 0. Limits: 16 files, 1 MiB with what belongs to them.\n",
    [](CLI::App& app) -> Run {
      const auto words = std::make_shared<std::vector<std::string>>();
      app.add_option("FILES", *words, "Files, or a folder of them")->required();
      return [words](Context& context) { return Put(context, *words); };
    },
};

const Command kFilesRemove{
    "remove",
    "Remove all files that the device keeps",
    "  quivordctl files remove\n",
    [](CLI::App& /*app*/) -> Run { return Remove; },
};

}  // namespace ctl
