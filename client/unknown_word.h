// What was meant by a word of the command line that is none of the program's.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace ctl {

// One line about the first word that `app`, after a parse that failed, knows neither as a command
// nor as an option, with the name that is closest to it; empty where all words are known.
std::string UnknownWord(const CLI::App& app);

}  // namespace ctl
