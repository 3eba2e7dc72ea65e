// A factory reset, followed until the device is up again.
#include <algorithm>
#include <iostream>
#include <thread>

#include "commands.h"
#include "commands/reset_report.h"
#include "number_check.h"
#include "numbers.h"
#include "option_words.h"
#include "table.h"

namespace ctl {
namespace {

using namespace ZEPH_MCUC;
using quivord::Trouble;
using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

constexpr std::uint32_t kReset = 0x01000002;
constexpr std::uint32_t kQuiet = 0x00010000;   // answered without data, touches nothing
constexpr auto kPatience = milliseconds(400);  // for an answer, before the device counts as silent
constexpr auto kLook = milliseconds(50);

struct Words {
  std::string type;
  bool yes = false;
  double limit_s = 180;
};

std::optional<std::uint8_t> ParseType(const std::string& word) {
  for (std::size_t type = 0; type < std::size(kResetRules); ++type) {
    if (word == kResetRules[type].name) return static_cast<std::uint8_t>(type);
  }
  const auto number = ParseNumber(word, 0xFF);
  return number.has_value() ? std::optional(static_cast<std::uint8_t>(*number)) : std::nullopt;
}

bool Confirmed(const Context& context, const Words& words, std::uint8_t type) {
  if (words.yes) return true;
  if (context.options.json) return false;
  std::cerr << "A reset of type " << ResetTypeText(type) << ":\n"
            << ResetTypeEffect(type) << "Type yes to go on: ";
  std::string answer;
  std::getline(std::cin, answer);
  return answer == "yes";
}

// The device on its way through a reset, as it shows from outside.
class Follower {
 public:
  Follower(const Context& context, seconds limit)
      : context_(context), deadline_(steady_clock::now() + limit) {}

  // Until the connection of `client` ends: with the reboot.
  Answer AwaitEnd(quivord::Client& client) {
    bool silent = false;
    while (steady_clock::now() < deadline_) {
      const auto reply = client.Call({.address = kQuiet, .length = 1}, kPatience);
      if (!reply && reply.error().trouble == Trouble::kDisconnected) return {};
      if (!reply && !silent) {
        context_.out.Step("preparing its factory state, and answering nobody");
        silent = true;
      }
      Wait();
    }
    return {silent ? Exit::kNoAnswer : Exit::kRefused,
            silent ? "the device is silent and hasn't rebooted in time"
                   : "the device still answers: a reset begins once its FPGA has loaded",
            {}};
  }

  // Until there is a daemon that answers.
  Answer AwaitAnswer() {
    while (steady_clock::now() < deadline_) {
      const auto client = context_.Connect();
      if (client && client.value()->Call({.address = kQuiet, .length = 1}, kPatience)) return {};
      Wait();
    }
    return {Exit::kNoAnswer, "the device has rebooted, and no daemon answers since", {}};
  }

  // Until its FPGA is loaded and has its parameters.
  Answer AwaitFpga(Device& device, FeaturePage& page) {
    while (steady_clock::now() < deadline_) {
      const Answer answer = device.ReadPage(page);
      if (!answer.done() || page.Restored()) return answer;
      Wait();
    }
    return {Exit::kNoAnswer, "the device answers again, but its FPGA hasn't loaded", {}};
  }

 private:
  // Between two looks; says that time passes.
  void Wait() const {
    const auto passed = std::chrono::duration_cast<seconds>(steady_clock::now() - begin_);
    context_.out.Progress(std::to_string(passed.count()) + " s");
    std::this_thread::sleep_for(kLook);
  }

  const Context& context_;
  const steady_clock::time_point begin_ = steady_clock::now();
  const steady_clock::time_point deadline_;
};

// The whole way; `now` is what the device holds at its end.
Answer Follow(const Context& context, const Words& words, std::uint8_t type, Kept& now) {
  const auto client = context.Connect();
  if (!client) return {Exit::kNoAnswer, client.error().text, {}};
  Follower follower(context, seconds(static_cast<long>(words.limit_s)));
  Answer answer = WriteRegister(context.options, *client.value(), kReset, {type});
  if (!answer.done()) return answer;
  context.out.Step("asked for");
  answer = follower.AwaitEnd(*client.value());
  if (!answer.done()) return answer;
  context.out.Step("rebooting");
  answer = follower.AwaitAnswer();
  if (!answer.done()) return answer;
  context.out.Step("answering again, its FPGA is loading");
  const auto device = Device::Open(context, answer.exit);
  if (device == nullptr) return answer;
  answer = follower.AwaitFpga(*device, now.page);
  return answer.done() ? ReadKept(*device, now) : answer;
}

Answer Before(const Context& context, Kept& before) {
  Exit exit = Exit::kDone;
  const auto device = Device::Open(context, exit);
  return device == nullptr ? Answer{exit, "", {}} : ReadKept(*device, before);
}

Exit Reset(const Context& context, const Words& words) {
  const auto type = ParseType(words.type);
  if (!type.has_value()) {
    return context.Fail(Exit::kWrongUse, "--type is 0 to 255 or one of " + ResetTypeNames());
  }
  Kept before;
  Kept now;
  Answer answer = Before(context, before);
  if (!answer.done() && answer.text.empty()) return answer.exit;  // has been said
  if (!answer.done()) return context.Fail(answer);
  if (!Confirmed(context, words, *type)) {
    return context.Fail(Exit::kWrongUse, "not confirmed, nothing was sent; --yes confirms");
  }
  const auto begin = steady_clock::now();
  answer = Follow(context, words, *type, now);
  if (!answer.done() && answer.text.empty()) return answer.exit;
  if (!answer.done()) return context.Fail(answer);
  const std::chrono::duration<double> taken = steady_clock::now() - begin;
  const ResetReport report = ReportReset(*type, before, now);
  context.out.Show("reset of type " + ResetTypeText(*type) + " done in " +
                       std::to_string(static_cast<int>(taken.count() + 0.5)) + " s\n" + report.text,
                   report.object);
  return report.as_meant ? Exit::kDone : Exit::kRefused;
}

Run Declare(CLI::App& app) {
  const auto words = std::make_shared<Words>();
  auto* const type = app.add_option("--type", words->type, "What is kept: 0 to 255, or a word")
                         ->type_name("T")
                         ->required();
  Offer(type, NamesOf(kResetRules));
  app.add_flag("--yes", words->yes, "Don't ask");
  app.add_option("--limit", words->limit_s, "How long it may take until the device is up again")
      ->type_name("SECONDS")
      ->check(NumberFrom(1.0, 3600.0))
      ->capture_default_str();
  return [words](Context& context) { return Reset(context, *words); };
}

}  // namespace

const Command kResetCommand{
    "reset",
    "Bring the device back to its factory state, and wait until it is up again",
    "  quivordctl reset --type plain\n"
    "  quivordctl reset --type keep-files --yes\n"
    "Types: 0 plain keeps the DHCP flag; 1 network sets the default address 192.168.0.10;\n"
    "  2 keep-files keeps DHCP flag, scenes, device names and configuration files; 3 all, and\n"
    "  every other, keeps none of these. Serial number and boot loader's MAC address always "
    "stay.\n",
    Declare,
};

}  // namespace ctl
