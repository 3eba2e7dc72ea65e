#include <algorithm>
#include <thread>

#include "commands.h"
#include "device.h"
#include "proto/calc_feature_words.h"
#include "subcommands.h"

namespace ctl {
namespace {

using namespace ZEPH_MCUC;
using std::chrono::steady_clock;

constexpr auto kLook = std::chrono::milliseconds(20);
constexpr std::uint32_t kMapping = 0x01000018;
constexpr std::uint32_t kCardMapping = 0x01000088;  // register of a receiving card
constexpr std::uint8_t kCardOn = 5;
constexpr std::uint8_t kCardOff = 0xFF;

// The first port that has a link of any kind.
std::optional<int> LinkedPort(const FeaturePage& page) {
  constexpr const char* kLinks[] = {"link-0-3", "link-4-7", "link-8-15", "fiber-1-links",
                                    "fiber-2-links"};
  std::optional<int> first;
  for (const char* name : kLinks) {
    const FeatureRegister& row = *FindFeature(name);
    for (const int port : FeaturePorts(row, page.Bytes(row)))
      first = std::min(port, first.value_or(port));
  }
  return first;
}

// Asks the first card of `port` until it says `wanted`, `kSettleTime` at most.
Answer AskCard(Device& device, int port, std::uint8_t wanted) {
  const quivord::Target card{JSHL_TypeReceiver, static_cast<std::uint8_t>(port), 0};
  const auto deadline = steady_clock::now() + kSettleTime;
  const std::string name = "the first card of port " + std::to_string(port);
  while (true) {
    Answer answer = device.ReadBehind(card, kCardMapping, 1);
    if (!answer.done() || answer.data.size() != 1) {
      return {Exit::kRefused, name + " doesn't answer", {}};
    }
    if (answer.data[0] == wanted) return {Exit::kDone, name, {}};
    if (steady_clock::now() >= deadline) {
      return {Exit::kRefused,
              "after " + std::to_string(kSettleTime.count()) + " seconds " + name + " says " +
                  std::to_string(answer.data[0]),
              {}};
    }
    std::this_thread::sleep_for(kLook);
  }
}

// Sends it to all cards, then reads what the ports are like.
Answer SendMapping(Device& device, bool on, FeaturePage& page) {
  Answer answer = device.Send(kMapping, {on ? std::uint8_t{1} : std::uint8_t{0}});
  if (answer.done()) answer = device.AwaitWork();
  return answer.done() ? device.ReadPage(page) : answer;
}

Exit Mapping(const Context& context, bool on) {
  Exit exit = Exit::kDone;
  const auto device = Device::Open(context, exit);
  if (device == nullptr) return exit;
  FeaturePage page;
  Answer answer = SendMapping(*device, on, page);
  if (!answer.done()) return context.Fail(answer);
  const std::string state = on ? "on" : "off";
  const auto port = LinkedPort(page);
  if (!port.has_value()) {
    context.out.Show("mapping " + state + " was sent to all cards; no port has a link to ask one",
                     {{"mapping", state}, {"port", nullptr}});
    return Exit::kDone;
  }
  answer = AskCard(*device, *port, on ? kCardOn : kCardOff);
  if (!answer.done()) {
    return context.Fail(answer.exit, "mapping " + state + " was sent, but " + answer.text);
  }
  context.out.Show("mapping is " + state + ", says " + answer.text,
                   {{"mapping", state}, {"port", *port}});
  return Exit::kDone;
}

constexpr Command kOn{"on", "Let every card show where it stands", "  quivordctl mapping on\n",
                      [](CLI::App& /*app*/) -> Run {
                        return [](Context& context) { return Mapping(context, true); };
                      }};
constexpr Command kOff{"off", "Let them show the picture again", "  quivordctl mapping off\n",
                       [](CLI::App& /*app*/) -> Run {
                         return [](Context& context) { return Mapping(context, false); };
                       }};

Run Declare(CLI::App& app) {
  static constexpr const Command* kCommands[] = {&kOn, &kOff};
  return DeclareSubcommands(app, kCommands);
}

}  // namespace

const Command kMappingCommand{
    "mapping",
    "Let all receiving cards show where they stand on their port, or stop it",
    "  quivordctl mapping on\n"
    "  quivordctl mapping off\n",
    Declare,
};

}  // namespace ctl
