// What shells and the build ask the program for; help doesn't list it.
//   complete WORD...    what may stand next, the last word as far as it is typed
//   manual [COMMAND]    a manual page as scdoc's source
//   commands            the names of all commands, those of families with their parts
#pragma once

#include <optional>
#include <span>
#include <string>

#include "command_tree.h"

namespace ctl {

// Answers where the first word asks for one of these: the exit status.
std::optional<Exit> RunHidden(CommandTree& tree, std::span<const std::string> words);

}  // namespace ctl
