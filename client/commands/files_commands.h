// The commands below `files`, and what they share.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "cardfiles/image.h"
#include "command.h"
#include "device.h"

namespace ctl {

extern const Command kFilesPut;
extern const Command kFilesList;
extern const Command kFilesSend;
extern const Command kFilesRemove;
extern const Command kFilesPack;

// The files that a device says it keeps, or why that can't be told.
struct Listed {
  Answer answer;
  std::vector<quivord::cardfiles::Entry> entries;
};
Listed ListFiles(Device& device);

// What a file that a device keeps is called.
std::string NameOf(const quivord::cardfiles::Entry& entry);

// `length` bytes from `offset` of the image that the device keeps.
Answer ReadImage(Device& device, std::uint32_t offset, std::size_t length);

// The content of a file on this computer; kWrongUse, with the file's name, where it can't be read,
// is no file, or is larger than a device keeps.
quivord::Result<quivord::cardfiles::Bytes> ReadLocal(const std::filesystem::path& path);

}  // namespace ctl
