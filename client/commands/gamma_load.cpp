#include "commands/gamma_commands.h"
#include "commands/picture_mode.h"

namespace ctl {
namespace {

using quivord::colour::CurveText;
using quivord::colour::GammaSet;

Exit Load(Context& context) {
  Exit exit = Exit::kDone;
  const auto device = Device::Open(context, exit);
  if (device == nullptr) return exit;
  PictureMode mode;
  GammaSet set;
  Answer answer = ReadMode(*device, &mode);
  if (answer.done()) answer = ChooseMode(*device, ZEPH_MCUC::hc::kDefaultMode);
  if (answer.done()) answer = ReadGamma(*device, &set);
  if (!answer.done()) return context.Fail(answer);
  const bool was_hdr = mode.set.HDRType != ZEPH_MCUC::hc::kDefaultMode;
  context.out.Show("loaded the 10-bit set" + std::string(was_hdr ? ", HDR is off now" : "") + "\n" +
                       GammaText(set),
                   {{"red", CurveText(set[0])},
                    {"green", CurveText(set[1])},
                    {"blue", CurveText(set[2])},
                    {"was", ModeName(mode.set.HDRType)}});
  return Exit::kDone;
}

Run DeclareLoad(CLI::App& /*app*/) { return Load; }

}  // namespace

const Command kGammaLoad{
    "load",
    "Load the stored 10-bit set; a colour without one gets the built-in table",
    "  quivordctl gamma load\n"
    "Ends an HDR mode, as 'quivordctl hdr off' does.",
    DeclareLoad,
};

}  // namespace ctl
