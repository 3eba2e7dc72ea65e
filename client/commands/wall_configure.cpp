// `wall configure` and `wall advanced`: what lays out a wall.
#include "commands.h"
#include "commands/wall_commands.h"
#include "numbers.h"
#include "option_words.h"
#include "wall/check.h"
#include "wall/text.h"

namespace ctl {
namespace {

namespace wall = quivord::wall;

struct ConfigureWords {
  std::string file;
  std::string rows;
  std::string columns;
  std::string cables;
  std::string perCable;
  bool wait = false;

  bool anyNumber() const {
    return !(rows.empty() && columns.empty() && cables.empty() && perCable.empty());
  }
};

quivord::Error Wrong(const std::string& text) { return {quivord::Trouble::kWrongUse, text}; }

std::string ModesText() {
  std::string text;
  for (const ZEPH_MCUC::ConnectionMode& mode : ZEPH_MCUC::kConnectionModes) {
    text += (text.empty() ? "" : ", ") + std::string(mode.name);
  }
  return text;
}

// A number from 1 to `most`.
std::optional<std::uint64_t> ParseCount(const std::string& word, std::uint64_t most) {
  const auto number = ParseNumber(word, most);
  return number == 0 ? std::nullopt : number;
}

// The numbers that aren't given, "--rows, --columns".
std::string Missing(const ConfigureWords& words) {
  std::string missing;
  for (const auto& [name, word] : {std::pair("--rows", &words.rows),
                                   {"--columns", &words.columns},
                                   {"--cables", &words.cables},
                                   {"--per-cable", &words.perCable}}) {
    if (word->empty()) missing += (missing.empty() ? "" : ", ") + std::string(name);
  }
  return missing;
}

quivord::Result<wall::Smart> FromNumbers(const ConfigureWords& words) {
  if (!words.anyNumber())
    return Wrong("give a FILE, or --rows, --columns, --cables and --per-cable");
  if (const std::string missing = Missing(words); !missing.empty())
    return Wrong("give " + missing + " too");
  const auto rows = ParseCount(words.rows, 255);
  const auto columns = ParseCount(words.columns, 255);
  const auto perCable = ParseCount(words.perCable, 512);
  const auto mode = wall::ParseMode(words.cables);
  if (!rows.has_value()) return Wrong("--rows is a number from 1 to 255");
  if (!columns.has_value()) return Wrong("--columns is a number from 1 to 255");
  if (!perCable.has_value()) return Wrong("--per-cable is a number from 1 to 512");
  if (!mode.has_value()) return Wrong("--cables is 0 to 7 or one of " + ModesText());
  return wall::Smart{.rows = static_cast<std::uint8_t>(*rows),
                     .columns = static_cast<std::uint8_t>(*columns),
                     .perCable = static_cast<std::uint16_t>(*perCable),
                     .mode = *mode};
}

quivord::Result<wall::Smart> FromFile(const std::string& file) {
  const auto loaded = LoadWall(file);
  if (!loaded) return loaded.error();
  if (loaded.value().kind == wall::Kind::kSmart) return loaded.value().smart;
  return Wrong(file + " is an advanced wall: quivordctl wall advanced " + file);
}

quivord::Result<wall::Smart> WantedSmart(const ConfigureWords& words) {
  if (words.file.empty()) return FromNumbers(words);
  if (words.anyNumber()) return Wrong("a file says all; leave out the numbers");
  return FromFile(words.file);
}

Exit Configure(Context& context, const ConfigureWords& words) {
  const auto smart = WantedSmart(words);
  if (!smart) return context.Fail(smart.error());
  if (const auto obstacle = wall::SmartObstacle(smart.value())) {
    return context.Fail(Exit::kRefused, "not sent: " + *obstacle);
  }
  const auto client = ConnectForSender(context, "a wall");
  if (!client) return context.Fail(client.error());
  const auto device = std::make_unique<WallDevice>(RegistersOf(context.options, *client.value()));
  const auto done = device->Configure(smart.value(), words.wait);
  if (!done) return context.Fail(done.error());
  if (words.wait) {
    const wall::Wall now = wall::Understand(device->bytes);
    context.out.Show(wall::ShowText(now), wall::ShowJson(now));
  } else {
    context.out.Show("taken; the device lays the wall out now (--wait waits for it)",
                     wall::SmartJson(smart.value()));
  }
  return Exit::kDone;
}

Run DeclareConfigure(CLI::App& app) {
  const auto words = std::make_shared<ConfigureWords>();
  app.add_option("FILE", words->file, "A smart wall's file, in place of the numbers");
  app.add_option("--rows", words->rows, "Rows of cabinets, 1 to 255")->type_name("N");
  app.add_option("--columns", words->columns, "Columns of cabinets, 1 to 255")->type_name("N");
  auto* const cables =
      app.add_option("--cables", words->cables,
                     "How cables run, by word or as 0 to 7: corner of the first cabinet, then rows "
                     "or columns")
          ->type_name("MODE");
  Offer(cables, NamesOf(ZEPH_MCUC::kConnectionModes));
  app.add_option("--per-cable", words->perCable,
                 "Cabinets that one cable may carry, 1 to 512; rounded up to whole lines")
      ->type_name("N");
  app.add_flag("--wait", words->wait, "Wait until the wall is laid out, and show it");
  return [words](Context& context) { return Configure(context, *words); };
}

struct AdvancedWords {
  std::string file;
};

quivord::Result<wall::PortRecords> WantedRecords(const std::string& file) {
  const auto loaded = LoadWall(file);
  if (!loaded) return loaded.error();
  if (loaded.value().kind == wall::Kind::kAdvanced) return loaded.value().records;
  return Wrong(file + " is a smart wall: quivordctl wall configure " + file);
}

Exit Advanced(Context& context, const AdvancedWords& words) {
  const auto records = WantedRecords(words.file);
  if (!records) return context.Fail(records.error());
  if (const auto obstacle = wall::AdvancedObstacle(records.value())) {
    return context.Fail(Exit::kRefused, "not sent: " + *obstacle);
  }
  const auto client = ConnectForSender(context, "a wall");
  if (!client) return context.Fail(client.error());
  const auto device = std::make_unique<WallDevice>(RegistersOf(context.options, *client.value()));
  const auto done = device->Place(records.value());
  if (!done) return context.Fail(done.error());
  const wall::Wall now = wall::Understand(device->bytes);
  context.out.Show(wall::ShowText(now), wall::ShowJson(now));
  return Exit::kDone;
}

Run DeclareAdvanced(CLI::App& app) {
  const auto words = std::make_shared<AdvancedWords>();
  app.add_option("FILE", words->file, "An advanced wall's file")->required();
  return [words](Context& context) { return Advanced(context, *words); };
}

}  // namespace

const Command kWallConfigure{
    "configure",
    "Lay out a wall from its rows, columns and cables",
    "  quivordctl wall configure --rows 4 --columns 3 --cables top-left-rows --per-cable 6 --wait\n"
    "  quivordctl wall configure wall.json\n"
    "Cables: 0 top-left-rows, 1 top-left-columns, 2 top-right-rows, 3 top-right-columns,\n"
    "  4 bottom-left-rows, 5 bottom-left-columns, 6 bottom-right-rows, 7 bottom-right-columns.\n"
    "Limits: 2048 cabinets, 512 a cable, at least as many as one cable may carry, ten ports.\n"
    "A file: {\"kind\": \"smart\", \"rows\": 4, \"columns\": 3, \"cables\": \"top-left-rows\",\n"
    "  \"per_cable\": 6}.",
    DeclareConfigure,
};

const Command kWallAdvanced{
    "advanced",
    "Place each port freely, as a file says",
    "  quivordctl wall advanced wall.json\n"
    "A file: {\"kind\": \"advanced\", \"ports\": [{\"port\": 0, \"cables\": \"top-left-rows\",\n"
    "  \"rows\": 2, \"columns\": 2, \"x\": 0, \"y\": 0}, ...]}; x and y in pixels; ports that it\n"
    "  leaves out carry nothing. Limits: 512 cabinets a port, 2048 in all.\n",
    DeclareAdvanced,
};

}  // namespace ctl
