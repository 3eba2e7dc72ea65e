#include "commands.h"
#include "commands/feature_set.h"
#include "commands/feature_value.h"
#include "device.h"
#include "numbers.h"
#include "option_words.h"
#include "proto/calc_feature_words.h"
#include "subcommands.h"
#include "table.h"

namespace ctl {
namespace {

using namespace ZEPH_MCUC;
using Rows = std::vector<std::vector<std::string>>;

struct Words {
  std::string name;
  std::vector<std::string> value;
};

const char* OwnerText(FeatureOwner owner) {
  switch (owner) {
    case FeatureOwner::kClient:
      return "clients";
    case FeatureOwner::kDaemon:
      return "the daemon";
    case FeatureOwner::kHardware:
      return "the hardware";
  }
  return "";
}

Exit NoSuchName(const Context& context, const std::string& name) {
  return context.Fail(Exit::kWrongUse,
                      "no register is called '" + name + "'; 'quivordctl feature show' names them");
}

bool IsOfPorts(const FeatureGroup& group) {
  return std::string_view(group.registers[0].name).starts_with("port-");
}

// A line a register.
std::string RegistersText(const FeaturePage& page) {
  Rows rows;
  for (const FeatureGroup& group : FeatureGroups()) {
    if (IsOfPorts(group)) continue;
    if (!rows.empty()) rows.emplace_back();
    rows.push_back({group.title});
    for (const FeatureRegister& row : group.registers) {
      rows.push_back({"  " + std::string(std::string_view(row.name)),
                      ValueText(row, page.Bytes(row)), row.meaning});
    }
  }
  return Columns(rows);
}

// A line a port: all values of a port in their order in the table.
std::string PortsText(const FeatureGroup& group, const FeaturePage& page) {
  Rows rows = {{"  port"}};
  for (std::size_t port = 0; port < kPortPlaces.size(); ++port) {
    std::vector<std::string> line = {"  " + std::to_string(port)};
    const std::string prefix = "port-" + std::to_string(port) + "-";
    for (const FeatureRegister& row : group.registers) {
      const std::string_view name = row.name;
      if (!name.starts_with(prefix)) continue;
      if (port == 0) rows[0].emplace_back(name.substr(prefix.size()));
      line.push_back(FeatureText(row, page.Bytes(row)));
    }
    rows.push_back(line);
  }
  return std::string(group.title) + ", each value by a name such as port-0-width, sizes in px\n" +
         Columns(rows);
}

std::string PageText(const FeaturePage& page) {
  std::string text = RegistersText(page);
  for (const FeatureGroup& group : FeatureGroups()) {
    if (IsOfPorts(group)) text += "\n\n" + PortsText(group, page);
  }
  return text;
}

nlohmann::json PageJson(const FeaturePage& page) {
  nlohmann::json object;
  for (const FeatureGroup& group : FeatureGroups()) {
    for (const FeatureRegister& row : group.registers) {
      object[std::string(std::string_view(row.name))] = ValueJson(row, page.Bytes(row));
    }
  }
  return object;
}

Exit ShowAll(const Context& context) {
  Exit exit = Exit::kDone;
  const auto device = Device::Open(context, exit);
  if (device == nullptr) return exit;
  FeaturePage page;
  const Answer answer = device->ReadPage(page);
  if (!answer.done()) return context.Fail(answer);
  context.out.Show(PageText(page), PageJson(page));
  return Exit::kDone;
}

std::string Details(const FeatureRegister& row, std::span<const std::uint8_t> bytes) {
  Rows rows = {{"  value", ValueText(row, bytes)},
               {"  address", AddressText(feature::kBase + row.offset)},
               {"  bytes", std::to_string(row.width)},
               {"  values", FeatureRange(row)},
               {"  written by", OwnerText(row.owner)}};
  if (*row.effect != '\0') rows.push_back({"  a write", row.effect});
  return std::string(std::string_view(row.name)) + ": " + row.meaning + "\n" + Columns(rows);
}

nlohmann::json DetailsJson(const FeatureRegister& row, std::span<const std::uint8_t> bytes) {
  return {{"name", std::string_view(row.name)},
          {"value", ValueJson(row, bytes)},
          {"unit", row.unit},
          {"address", feature::kBase + row.offset},
          {"length", row.width},
          {"values", FeatureRange(row)},
          {"written_by", OwnerText(row.owner)},
          {"meaning", row.meaning},
          {"effect", row.effect}};
}

Exit ShowOne(const Context& context, const FeatureRegister& row, bool details) {
  Exit exit = Exit::kDone;
  const auto device = Device::Open(context, exit);
  if (device == nullptr) return exit;
  const Answer answer = device->Read(row);
  if (!answer.done()) return context.Fail(answer);
  context.out.Show(details ? Details(row, answer.data) : FeatureText(row, answer.data),
                   DetailsJson(row, answer.data));
  return Exit::kDone;
}

std::string Joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

std::vector<std::string> AllNames() {
  std::vector<std::string> all;
  for (const FeatureGroup& group : FeatureGroups()) {
    const auto names = NamesOf(group.registers);
    all.insert(all.end(), names.begin(), names.end());
  }
  return all;
}

Run Declare(CLI::App& app) {
  const auto words = std::make_shared<Words>();
  app.require_subcommand(0, 1);
  auto* const show = AddPart(app, "show", "Show all named registers, or all about one",
                             "  quivordctl feature show\n"
                             "  quivordctl feature show bypass\n");
  const auto name = [&words](CLI::App* part) {
    auto* const option = part->add_option("NAME", words->name, "Register, as show names it");
    Offer(option, AllNames());
    return option;
  };
  name(show);
  auto* const get = AddPart(app, "get", "Print a register's value alone",
                            "  quivordctl feature get screen-width\n");
  name(get)->required();
  auto* const set = AddPart(app, "set", "Set a register, and wait until it shows",
                            "  quivordctl feature set role slave\n"
                            "  quivordctl feature set offset-x 100\n"
                            "  quivordctl feature set bypass-offset -50,20\n");
  name(set)->required();
  set->add_option("VALUE", words->value, "Value, as get prints it")->required()->expected(1, 2);
  return [words, get, set](Context& context) {
    const bool shows = !get->parsed() && !set->parsed();
    if (shows && words->name.empty()) return ShowAll(context);
    const FeatureRegister* row = FindFeature(words->name);
    if (row == nullptr) return NoSuchName(context, words->name);
    if (set->parsed()) return SetFeature(context, *row, Joined(words->value));
    return ShowOne(context, *row, shows);
  };
}

}  // namespace

const Command kFeatureCommand{
    "feature",
    "Show, get and set the feature registers by name",
    "  quivordctl feature show\n"
    "  quivordctl feature show bypass\n"
    "  quivordctl feature get screen-width\n"
    "  quivordctl feature set role slave\n",
    Declare,
};

}  // namespace ctl
