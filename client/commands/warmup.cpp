#include "commands.h"
#include "device.h"
#include "number_check.h"
#include "proto/calc_hc.h"
#include "subcommands.h"

namespace ctl {
namespace {

namespace hc = ZEPH_MCUC::hc;

constexpr std::uint32_t kRegister = hc::kBase + hc::kWarmUp;
constexpr char kNothingStarts[] = "Kept, for whoever runs a warm-up: nothing in the daemon does.";

struct Words {
  std::optional<int> mode, time;
};

bool IsSet(std::span<const std::uint8_t> setting) {
  return setting[0] != 0xFF || setting[1] != 0xFF;  // as a new store has it
}

std::string Text(std::span<const std::uint8_t> setting) {
  if (!IsSet(setting)) return "no warm-up is set";
  return "warm-up mode " + std::to_string(setting[0]) + ", time " + std::to_string(setting[1]);
}

nlohmann::json Json(std::span<const std::uint8_t> setting) {
  if (!IsSet(setting)) return {{"mode", nullptr}, {"time", nullptr}};
  return {{"mode", setting[0]}, {"time", setting[1]}};
}

Exit Set(const Context& context, Device& device, std::vector<std::uint8_t> setting) {
  const Answer answer =
      device.Write({.address = kRegister,
                    .data = setting,
                    .shown_at = kRegister,
                    .shown_length = hc::kWarmUpBytes,
                    .shows = [setting](std::span<const std::uint8_t> shown) {
                      return std::equal(shown.begin(), shown.end(), setting.begin(), setting.end());
                    }});
  if (answer.done()) {
    context.out.Show(Text(setting) + "\n" + kNothingStarts, Json(setting));
    return Exit::kDone;
  }
  return context.Fail(
      answer.exit, answer.text.empty() ? "the device took it, but didn't store it" : answer.text);
}

// Sets what `words` say, and shows what is stored where they say nothing.
Exit Do(const Context& context, const Words& words) {
  Exit exit = Exit::kDone;
  const auto device = Device::Open(context, exit);
  if (device == nullptr) return exit;
  const Answer answer = device->ReadBytes(kRegister, hc::kWarmUpBytes);
  if (!answer.done()) return context.Fail(answer);
  std::vector<std::uint8_t> setting = answer.data;
  if (!words.mode && !words.time) {
    context.out.Show(Text(setting), Json(setting));
    return Exit::kDone;
  }
  if (!IsSet(setting) && !(words.mode && words.time)) {
    return context.Fail(Exit::kWrongUse, "no warm-up is set: give --mode and --time");
  }
  if (words.mode) setting[0] = static_cast<std::uint8_t>(*words.mode);
  if (words.time) setting[1] = static_cast<std::uint8_t>(*words.time);
  return Set(context, *device, setting);
}

Run DeclareSet(CLI::App& app) {
  const auto words = std::make_shared<Words>();
  app.add_option("--mode", words->mode, "Mode, a byte")->type_name("N")->check(NumberFrom(0, 255));
  app.add_option("--time", words->time, "Time of a step, a byte")
      ->type_name("N")
      ->check(NumberFrom(0, 255));
  return [words](Context& context) {
    if (words->mode || words->time) return Do(context, *words);
    return context.Fail(Exit::kWrongUse, "give --mode or --time");
  };
}

constexpr Command kShow{
    "show", "Show the stored warm-up setting", "  quivordctl warmup show\n",
    [](CLI::App& /*app*/) -> Run { return [](Context& context) { return Do(context, {}); }; }};
constexpr Command kSet{"set", "Set it; what isn't given stays as it was",
                       "  quivordctl warmup set --mode 1 --time 60\n", DeclareSet};

Run Declare(CLI::App& app) {
  static constexpr const Command* kCommands[] = {&kShow, &kSet};
  return DeclareSubcommands(app, kCommands, &kShow);
}

}  // namespace

const Command kWarmupCommand{
    "warmup",
    "Show or set the stored warm-up setting",
    "  quivordctl warmup\n"
    "  quivordctl warmup set --mode 1 --time 60\n",
    Declare,
};

}  // namespace ctl
