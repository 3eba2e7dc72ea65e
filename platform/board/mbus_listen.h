// The bus's socket in the board folder.
#pragma once

#include <filesystem>

#include "board/files.h"

namespace board::mbus {

// Listens on `path` (mode 0600), in place of a socket there that nobody listens on any more.
// Failure: an empty handle, and a warning says why: somebody listens, another kind of file is in
// the way, or the path has more than 107 bytes.
FileHandle Listen(const std::filesystem::path& path);

}  // namespace board::mbus
