// What hangs behind the ports: registers of cards, their size, the light that their sensors see.
#include <thread>

#include "commands.h"
#include "number_check.h"
#include "proto/calc_brightness.h"
#include "proto/calc_brightness_lux.h"
#include "register.h"
#include "subcommands.h"

namespace ctl {
namespace {

using ZEPH_MCUC::DWQ_DECWD;

constexpr std::uint32_t kSizeRegister = 0x02000017;
constexpr auto kSensorPause = std::chrono::milliseconds(2);  // that a sensor needs to answer

// `run` for a device behind a port: `kind` where the options name none.
Run BehindAPort(Run run, ZEPH_MCUC::JSHL_ProtoDeviceType_e kind) {
  return [run = std::move(run), kind](Context& context) {
    Options options = context.options;
    if (options.target.device == ZEPH_MCUC::JSHL_TypeSender) options.target.device = kind;
    Context card{options, context.out, context.called};
    return run(card);
  };
}

Exit ShowSize(Context& context) {
  const auto obstacle = ReadObstacle(context.options);
  if (obstacle.has_value()) return context.Fail(Exit::kWrongUse, *obstacle);
  const auto client = context.Connect();
  if (!client) return context.Fail(client.error());
  const Answer answer = ReadRegister(context.options, *client.value(), kSizeRegister, 4);
  if (!answer.done()) return context.Fail(answer);
  if (answer.data.size() != 4) return context.Fail(Exit::kRefused, "the card's answer is short");
  const std::uint16_t width = DWQ_DECWD(&answer.data[0]);
  const std::uint16_t height = DWQ_DECWD(&answer.data[2]);
  context.out.Show(std::to_string(width) + " x " + std::to_string(height) + " pixels",
                   {{"width", width}, {"height", height}});
  return Exit::kDone;
}

Exit ShowLux(Context& context, unsigned sensor) {
  using namespace ZEPH_MCUC::brightness;
  const auto obstacle = ReadObstacle(context.options);
  if (obstacle.has_value()) return context.Fail(Exit::kWrongUse, *obstacle);
  const auto client = context.Connect();
  if (!client) return context.Fail(client.error());
  const auto request = SensorRequest(static_cast<std::uint8_t>(sensor));
  const Answer asked = WriteRegister(context.options, *client.value(), kCardSensor,
                                     {request.begin(), request.end()});
  if (!asked.done()) return context.Fail(asked);
  std::this_thread::sleep_for(kSensorPause);
  const Answer answer =
      ReadRegister(context.options, *client.value(), kCardSensor, kSensorReplySize);
  if (!answer.done()) return context.Fail(answer);
  if (answer.data.size() != kSensorReplySize) {
    return context.Fail(Exit::kRefused, "the card's answer is short");
  }
  const auto lux =
      LuxOfReply(std::span<const std::uint8_t, kSensorReplySize>(answer.data.data(), 5));
  if (!lux.has_value()) {
    return context.Fail(Exit::kRefused, "the sensor gives no value; is one plugged into the card?");
  }
  context.out.Show(std::to_string(*lux) + " lux", {{"lux", *lux}});
  return Exit::kDone;
}

const Command kCardRead{
    "read", "Read registers of a card", "  quivordctl card read 0x02000017 4 --port 0 --card 2\n",
    [](CLI::App& app) {
      return BehindAPort(kReadCommand.declare(app), ZEPH_MCUC::JSHL_TypeReceiver);
    }};

const Command kCardWrite{
    "write", "Write registers of a card, or of all",
    "  quivordctl card write 0x02000001 80 --port all --card all\n", [](CLI::App& app) {
      return BehindAPort(kWriteCommand.declare(app), ZEPH_MCUC::JSHL_TypeReceiver);
    }};

const Command kCardSize{"size", "Show how many pixels a receiving card has",
                        "  quivordctl card size --port 1 --card 0\n", [](CLI::App&) {
                          return BehindAPort(ShowSize, ZEPH_MCUC::JSHL_TypeReceiver);
                        }};

const Command kCardLux{
    "lux", "Show the light that a multi-function card's sensor sees",
    "  quivordctl card lux --port 0\n", [](CLI::App& app) {
      const auto sensor = std::make_shared<unsigned>(0);
      app.add_option("--sensor", *sensor, "Address of the sensor on the card, 0 to 5")
          ->type_name("N")
          ->check(NumberFrom(0, 5));
      return BehindAPort([sensor](Context& context) { return ShowLux(context, *sensor); },
                         ZEPH_MCUC::JSHL_TypeMultiFunc);
    }};

Run Declare(CLI::App& app) {
  static constexpr const Command* kCommands[] = {&kCardSize, &kCardLux, &kCardRead, &kCardWrite};
  return DeclareSubcommands(app, kCommands);
}

}  // namespace

const Command kCardCommand{
    "card",
    "Read and write what hangs behind the ports",
    "  quivordctl card size --port 0 --card 0\n"
    "  quivordctl card lux --port 0\n"
    "  quivordctl card read 0x02000001 1 --port 1 --card 3\n",
    Declare,
};

}  // namespace ctl
