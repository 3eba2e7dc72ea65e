#include "brightness/words.h"
#include "commands.h"
#include "commands/brightness_commands.h"

namespace ctl {
namespace {

namespace brightness = quivord::brightness;
namespace table = ZEPH_MCUC::brightness;

struct SetWords {
  std::string value;
};

// All receiving cards, unless the command line names some.
Options CardOptions(const Options& given) {
  Options options = given;
  options.target.device = ZEPH_MCUC::JSHL_TypeReceiver;
  if (!given.portGiven) options.target.port = table::kAllPorts;
  if (!given.cardGiven) options.target.board = table::kAllBoards;
  return options;
}

std::string CardsText(const quivord::Target& target) {
  const bool all = target.board == table::kAllBoards;
  std::string text = all ? "all cards" : "card " + std::to_string(target.board);
  text += target.port == table::kAllPorts ? (all ? "" : " of all ports")
                                          : " of port " + std::to_string(target.port);
  return text;
}

// What will set another brightness before long.
std::string OverruledBy(const Options& options, quivord::Client& client) {
  Options sender = options;
  sender.target = {};
  const Answer mode = ReadRegister(sender, client, table::kBase, 1);
  if (!mode.done() || mode.data.empty()) return {};
  const brightness::KindRow& row = brightness::RowOfMode(mode.data[0]);
  if (row.kind == brightness::Kind::kNone) return {};
  return "; the plan in force (" + std::string(row.word) + ") sets its own at its next step";
}

Exit Set(Context& context, const SetWords& words) {
  const auto value = brightness::ParseBrightness(words.value);
  if (!value.has_value()) {
    return context.Fail(Exit::kWrongUse, "VALUE is 0 to 255, or a percentage as 60%");
  }
  const Options options = CardOptions(context.options);
  const auto client = context.Connect();
  if (!client) return context.Fail(client.error());
  const Answer answer = WriteRegister(options, *client.value(), table::kCardBrightness, {*value});
  if (!answer.done()) return context.Fail(answer);
  context.out.Show(
      "sent to " + CardsText(options.target) + ": " + brightness::BrightnessText(*value) +
          OverruledBy(options, *client.value()),
      {{"brightness", *value}, {"port", options.target.port}, {"card", options.target.board}});
  return Exit::kDone;
}

Run DeclareSet(CLI::App& app) {
  const auto words = std::make_shared<SetWords>();
  app.add_option("VALUE", words->value, "0 to 255, or a percentage as 60%")->required();
  return [words](Context& context) { return Set(context, *words); };
}

}  // namespace

const Command kBrightnessSet{
    "set",
    "Set the brightness of the receiving cards",
    "  quivordctl brightness set 60%\n"
    "  quivordctl brightness set 200 --port 1\n"
    "  quivordctl brightness set 128 --port 0 --card 2\n"
    "Without --port and --card: all cards.",
    DeclareSet,
};

}  // namespace ctl
