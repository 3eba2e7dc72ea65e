#include "commands.h"
#include "commands/feature_set.h"
#include "device.h"
#include "proto/calc_feature_words.h"
#include "subcommands.h"

namespace ctl {
namespace {

constexpr char kMember[] = "output";  // of JSON

const ZEPH_MCUC::FeatureRegister& Row() { return *ZEPH_MCUC::FindFeature("output"); }

Exit Show(const Context& context) {
  Exit exit = Exit::kDone;
  const auto device = Device::Open(context, exit);
  if (device == nullptr) return exit;
  const Answer answer = device->Read(Row());
  if (!answer.done()) return context.Fail(answer);
  const std::string state = ZEPH_MCUC::FeatureText(Row(), answer.data);
  context.out.Show("output is " + state, {{kMember, state}});
  return Exit::kDone;
}

constexpr Command kOpen{"open", "Let the FPGA's output go to the cards",
                        "  quivordctl output open\n", [](CLI::App& /*app*/) -> Run {
                          return [](Context& context) {
                            return SetFeature(context, Row(), "open", kMember);
                          };
                        }};
constexpr Command kClose{
    "close", "Stop it", "  quivordctl output close\n", [](CLI::App& /*app*/) -> Run {
      return [](Context& context) { return SetFeature(context, Row(), "closed", kMember); };
    }};
constexpr Command kShow{"show", "Say which it is", "  quivordctl output show\n",
                        [](CLI::App& /*app*/) -> Run { return Show; }};

Run Declare(CLI::App& app) {
  static constexpr const Command* kCommands[] = {&kOpen, &kClose, &kShow};
  return DeclareSubcommands(app, kCommands, &kShow);
}

}  // namespace

const Command kOutputCommand{
    "output",
    "Open or close the FPGA's output; each start of the daemon closes it",
    "  quivordctl output open\n"
    "  quivordctl output show\n",
    Declare,
};

}  // namespace ctl
