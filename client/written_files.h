// The files that commands write.
#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>
#include <span>
#include <string>

#include "command.h"

namespace ctl {

// Marks `option` as the name of a file that the command writes: `{board}` in it stands for the name
// of the board's folder, so that a command on many boards writes a file for each. Gives `option`.
CLI::Option* WritesFile(CLI::Option* option);

// The first of the files asked for that all boards would write, one over the other; empty if none.
std::string FileOfAllBoards();

// Puts the name of `board` where a file's name has `{board}`. Before the command runs.
void NameWrittenFiles(const std::filesystem::path& board);

// Replaces `file` by `bytes`; what is in the way is said on standard error.
Exit WriteFile(const Context& context, const std::string& file, std::string_view bytes);
Exit WriteFile(const Context& context, const std::string& file,
               std::span<const std::uint8_t> bytes);

}  // namespace ctl
