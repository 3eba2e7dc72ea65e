#include "commands.h"
#include "commands/gamma_commands.h"
#include "subcommands.h"

namespace ctl {
namespace {

Run Declare(CLI::App& app) {
  static constexpr const Command* kCommands[] = {&kGammaUpload, &kGammaLoad, &kGammaShow,
                                                 &kGammaDraw};
  return DeclareSubcommands(app, kCommands, &kGammaShow);
}

}  // namespace

const Command kGammaCommand{
    "gamma",
    "Store, load, show and draw the gamma tables of the default mode",
    "  quivordctl gamma upload --exponent 2.4\n"
    "  quivordctl gamma draw gamma.png\n",
    Declare,
};

}  // namespace ctl
