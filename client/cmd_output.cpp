#include "commands.h"
#include "device.h"
#include "feature_set.h"
#include "proto/calc_feature_words.h"

namespace ctl {
namespace {

const ZEPH_MCUC::FeatureRegister& Row() { return *ZEPH_MCUC::FindFeature("output"); }

Exit Show(const Context& context) {
  Exit exit = Exit::kDone;
  const auto device = Device::Open(context, exit);
  if (device == nullptr) return exit;
  const Answer answer = device->Read(Row());
  if (answer.exit != Exit::kDone) return context.Fail(answer.exit, answer.text);
  const std::string state = ZEPH_MCUC::FeatureText(Row(), answer.data);
  context.out.Show("output is " + state, {{"output", state}});
  return Exit::kDone;
}

Run Declare(CLI::App& app) {
  app.require_subcommand(1);
  const auto* open = app.add_subcommand("open", "Let the FPGA's output go to the cards");
  const auto* close = app.add_subcommand("close", "Stop it");
  app.add_subcommand("show", "Say which it is");
  return [open, close](Context& context) {
    if (open->parsed()) return SetFeature(context, Row(), "open");
    return close->parsed() ? SetFeature(context, Row(), "closed") : Show(context);
  };
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
