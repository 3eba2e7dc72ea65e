// A command that is a family of commands.
#pragma once

#include <span>

#include "command.h"

namespace ctl {

// Declares `commands` below `app`, of which one has to be given; the common options may stand
// behind it too. The function that comes back runs the one that was chosen.
Run DeclareSubcommands(CLI::App& app, std::span<const Command* const> commands);

}  // namespace ctl
