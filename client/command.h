// What a command of quivordctl is made of, and what it gets to work with.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>

#include "options.h"
#include "output.h"
#include "quivord/client.h"

namespace ctl {

// How the program ends.
enum class Exit : int {
  kDone = 0,
  kRefused = 1,   // the device refused, or would
  kWrongUse = 2,  // the command line says something that can't be done
  kNoAnswer = 3,  // no daemon, or no answer in time
};

// The status that goes with a trouble of the bus.
Exit ExitFor(quivord::Trouble trouble);

struct Answer;  // of a device, register.h

// Everything a command works with while it runs.
struct Context {
  const Options& options;
  Output& out;
  std::string called;  // the command, as "quivordctl wall show"

  // Connects as the options say, else as `default_id`; `on_report` and `on_end` as in `Connection`.
  quivord::Result<std::unique_ptr<quivord::Client>> Connect(
      std::uint32_t default_id = 0, std::function<void(const quivord::Report&)> on_report = nullptr,
      std::function<void(const quivord::Error&)> on_end = nullptr) const;

  // Says on standard error what went wrong and, where `text` names no command itself, what to do
  // next. Gives the exit status that goes with it.
  Exit Fail(const quivord::Error& error) const;
  Exit Fail(const Answer& answer) const;
  Exit Fail(Exit exit, const std::string& text) const;
};

using Run = std::function<Exit(Context&)>;

// A command: `declare` adds its arguments to `app` and gives what runs when it was chosen. A
// command with subcommands adds those and gives a function that looks which one was chosen.
struct Command {
  const char* name;
  const char* summary;   // one line
  const char* examples;  // whole command lines, shown by --help
  Run (*declare)(CLI::App& app);
};

}  // namespace ctl
