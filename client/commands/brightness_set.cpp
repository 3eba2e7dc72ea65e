// `brightness set` and `brightness plan`: what changes the screen.
#include "brightness/check.h"
#include "brightness/file.h"
#include "brightness/text.h"
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
      CardsText(options.target) + " at " + brightness::BrightnessText(*value) +
          OverruledBy(options, *client.value()),
      {{"brightness", *value}, {"port", options.target.port}, {"card", options.target.board}});
  return Exit::kDone;
}

Run DeclareSet(CLI::App& app) {
  const auto words = std::make_shared<SetWords>();
  app.add_option("VALUE", words->value, "0 to 255, or a percentage as 60%")->required();
  return [words](Context& context) { return Set(context, *words); };
}

struct PlanWords {
  std::string file;
  bool check = false;
};

// What is said of a plan; a warning stands in front of it.
void SayPlan(const Context& context, const brightness::Plan& plan, const std::string& text,
             std::size_t bytes) {
  const std::string note = brightness::WeekdayWarning(plan);
  context.out.Show((note.empty() ? "" : "note: " + note + "\n") + text,
                   {{"plan", brightness::RowOf(plan.kind).word},
                    {"bytes", bytes},
                    {"note", note.empty() ? nlohmann::json(nullptr) : nlohmann::json(note)}});
}

Exit SendPlan(Context& context, const PlanWords& words) {
  const auto plan = LoadPlan(words.file);
  if (!plan) return context.Fail(plan.error());
  const brightness::Bytes bytes = brightness::TableOf(plan.value());
  const std::string kind = brightness::RowOf(plan.value().kind).word;
  if (words.check) {
    SayPlan(context, plan.value(),
            words.file + " is fine: " + kind + ", " + std::to_string(bytes.size()) + " bytes",
            bytes.size());
    return Exit::kDone;
  }
  BrightnessDevice device(context);
  Answer answer = device.Connect();
  if (answer.done()) {
    answer = device.WriteTable(
        bytes, [&](std::size_t sent) { context.out.Progress("sent", sent, bytes.size()); });
  }
  if (!answer.done()) return context.Fail(answer);
  SayPlan(context, plan.value(),
          "in force and stored: " + std::string(brightness::RowOf(plan.value().kind).text),
          bytes.size());
  return Exit::kDone;
}

Run DeclarePlan(CLI::App& app) {
  const auto words = std::make_shared<PlanWords>();
  app.add_option("FILE", words->file, "The plan's file")->required();
  app.add_flag("--check", words->check, "Only say whether it is fine; send nothing");
  return [words](Context& context) { return SendPlan(context, *words); };
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

const Command kBrightnessPlan{
    "plan",
    "Send a brightness plan; it is in force at once and survives a restart",
    "  quivordctl brightness plan examples/brightness-mix.json\n"
    "  quivordctl brightness plan --check plan.json\n"
    "Kinds: list (times), sensor (light), mix (both), serial and hardware (an outside device).\n"
    "docs/brightness.md shows a file of each.",
    DeclarePlan,
};

}  // namespace ctl
