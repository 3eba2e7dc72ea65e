#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iterator>

#include "commands.h"
#include "commands/files_commands.h"
#include "file_fault.h"
#include "subcommands.h"

namespace ctl {
namespace {

namespace cardfiles = quivord::cardfiles;
namespace space = ZEPH_MCUC::cardfiles;

Run Declare(CLI::App& app) {
  static constexpr const Command* kCommands[] = {
      &kFilesPut, &kFilesList, &kFilesSend, &kFilesRemove, &kFilesPack,
  };
  return DeclareSubcommands(app, kCommands, &kFilesList);
}

}  // namespace

Listed ListFiles(Device& device) {
  const Answer header = ReadImage(device, 0, cardfiles::kHeaderBytes);
  if (!header.done()) return {header, {}};
  const Answer names = ReadImage(device, space::kNames - space::kBase, cardfiles::kNamesBytes);
  if (!names.done()) return {names, {}};
  return {{}, cardfiles::Entries(header.data, names.data)};
}

std::string NameOf(const cardfiles::Entry& entry) {
  return entry.name.empty() ? "(no name)" : entry.name;
}

Answer ReadImage(Device& device, std::uint32_t offset, std::size_t length) {
  Answer all;
  while (all.data.size() < length) {
    const auto at = static_cast<std::uint32_t>(all.data.size());
    const Answer part = device.ReadBytes(space::kBase + offset + at,
                                         std::min(cardfiles::kPiece, length - all.data.size()));
    if (!part.done()) return part;
    all.data.insert(all.data.end(), part.data.begin(), part.data.end());
  }
  return all;
}

quivord::Result<cardfiles::Bytes> ReadLocal(const std::filesystem::path& path) {
  const auto wrong = [](const std::string& text) {
    return quivord::Error{quivord::Trouble::kWrongUse, text};
  };
  std::error_code failed;
  const auto size = std::filesystem::file_size(path, failed);  // fails for what is no plain file
  if (failed) return wrong(quivord::CannotRead(path, failed.value()));
  if (size > space::kImage) return wrong(path.string() + " is larger than a device keeps");
  std::ifstream file(path, std::ios::binary);
  if (!file) return wrong(quivord::CannotRead(path, errno));
  return cardfiles::Bytes{std::istreambuf_iterator<char>(file), {}};
}

const Command kFilesCommand{
    "files",
    "Keep configuration files for the receiving cards on the device, and send them",
    "  quivordctl files pack start.txt start.rcfgx\n"
    "  quivordctl files put start.rcfgx night.rcfgx\n"
    "  quivordctl files list\n"
    "  quivordctl files send 1\n",
    Declare,
};

}  // namespace ctl
