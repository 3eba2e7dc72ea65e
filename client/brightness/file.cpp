#include "brightness/file.h"

#include <algorithm>

#include "brightness/check.h"
#include "brightness/words.h"
#include "json/object.h"

namespace quivord::brightness {
namespace {

using json::Fault;
using json::Object;
using json::Value;
using json::Wants;

constexpr std::uint16_t kUsualInterval_s = 10;
constexpr std::uint8_t kUsualReadings = 3;

std::uint8_t ReadBrightness(const Object& object) {
  const Value& value = object.At("brightness");
  const auto read = ParseBrightness(value.is_string() ? value.get<std::string>() : value.dump());
  if (!read.has_value()) Wants(object.Place("brightness"), "is 0 to 255 or a text as \"60%\"");
  return *read;
}

template <class Node>
void ReadTime(const Object& object, Node& node) {
  const auto time = ParseTime(object.Text("time"));
  if (!time.has_value()) Wants(object.Place("time"), "is a time as \"08:05\"");
  node.hour = time->hour;
  node.minute = time->minute;
}

// Reads the entries of a list, each by `read(object)`.
template <class Read>
auto ReadList(const Object& object, const char* key, Read read) {
  std::vector<decltype(read(object))> entries;
  for (std::size_t i = 0; i < object.List(key).size(); ++i) {
    entries.push_back(read(object.Entry(key, i)));
  }
  return entries;
}

std::uint8_t ReadPorts(const Object& node) {
  std::uint8_t mask = 0;
  for (const Value& port : node.List("ports")) {
    if (!port.is_number_integer() || port < 0 || port >= table::list::kPortsDriven) {
      Wants(node.Place("ports"), "names ports from 0 to 3");
    }
    mask = static_cast<std::uint8_t>(mask | 1 << port.get<int>());
  }
  return mask;
}

std::uint8_t ReadDays(const Object& node) {
  if (!node.Has("days")) return kEveryDay;
  std::uint8_t mask = 0;
  for (const Value& word : node.List("days")) {
    const auto day = word.is_string() ? ParseDay(word.get<std::string>()) : std::nullopt;
    if (!day.has_value()) Wants(node.Place("days"), "names days: mon tue wed thu fri sat sun");
    mask = static_cast<std::uint8_t>(mask | 1 << *day);
  }
  return mask;
}

table::ListNode ReadListNode(const Object& object) {
  object.Only({"time", "brightness", "ports", "colours"});
  table::ListNode node;
  ReadTime(object, node);
  node.brightness = ReadBrightness(object);
  node.ports = ReadPorts(object);
  if (!object.Has("colours")) return node;
  const Object colours = object.Sub("colours");
  colours.Only({"red", "green", "blue", "virtual_red"});
  node.red = colours.Whole<std::uint8_t>("red", 0, 255);
  node.green = colours.Whole<std::uint8_t>("green", 0, 255);
  node.blue = colours.Whole<std::uint8_t>("blue", 0, 255);
  node.virtualRed = colours.Whole<std::uint8_t>("virtual_red", 0, 255);
  return node;
}

table::Sensor ReadSensor(const Object& object) {
  object.Only({"position", "port", "card", "address"});
  return {.position = object.WholeOr<std::uint8_t>("position", 0, 255, 0),
          .port = object.Whole<std::uint8_t>("port", 0, 9),
          .board = object.Whole<std::uint16_t>("card", 0, 65534),
          .address = object.Whole<std::uint8_t>("address", 0, 5)};
}

table::MixNode ReadMixNode(const Object& object) {
  object.Only({"time", "days", "sensor", "percent", "use"});
  table::MixNode node;
  ReadTime(object, node);
  node.weekdays = ReadDays(object);
  node.sensor = object.FlagOr("sensor", false);
  if (node.sensor && object.Has("percent")) {
    Wants(object.Place("percent"), "has no place beside \"sensor\"");
  }
  if (!node.sensor) node.percent = object.Whole<std::uint8_t>("percent", 0, 100);
  node.valid = object.FlagOr("use", true) ? 1 : 0;
  return node;
}

table::LuxItem ReadLuxItem(const Object& object) {
  object.Only({"lux", "percent"});
  return {object.Whole<std::uint16_t>("lux", 0, 65535),
          object.Whole<std::uint8_t>("percent", 0, 100)};
}

std::vector<Extra> ReadExtra(const Object& file) {
  if (!file.Has("extra")) return {};
  return ReadList(file, "extra", [](const Object& object) {
    object.Only({"at", "bytes"});
    const std::string text = object.Text("bytes");
    Extra extra{object.Whole<std::uint16_t>("at", 0, table::kAreaSize - 1), {}};
    const bool hex = text.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
    if (!hex || text.empty() || text.size() % 2 != 0) {
      Wants(object.Place("bytes"), "is hexadecimal, two digits a byte");
    }
    for (std::size_t i = 0; i < text.size(); i += 2) {
      extra.bytes.push_back(static_cast<std::uint8_t>(std::stoi(text.substr(i, 2), nullptr, 16)));
    }
    return extra;
  });
}

void ReadListPlan(const Object& file, Plan& plan) {
  file.Only({"interface", "kind", "nodes", "extra"});
  plan.list = ReadList(file, "nodes", ReadListNode);
  std::size_t coloured = 0;
  for (std::size_t i = 0; i < plan.list.size(); ++i) {
    if (file.Entry("nodes", i).Has("colours")) ++coloured;
  }
  plan.colours = coloured > 0;
  if (plan.colours && coloured < plan.list.size()) {
    Wants("\"nodes\"", "have \"colours\" each, or none has");
  }
}

void ReadSensorPlan(const Object& file, Plan& plan) {
  file.Only({"interface", "kind", "sensors", "dark", "bright", "steps", "extra"});
  plan.sensors = ReadList(file, "sensors", ReadSensor);
  const Object dark = file.Sub("dark");
  const Object bright = file.Sub("bright");
  dark.Only({"lux", "brightness"});
  bright.Only({"lux", "brightness"});
  plan.range = {.mostLux = bright.Whole<std::uint16_t>("lux", 0, 65535),
                .leastLux = dark.Whole<std::uint16_t>("lux", 0, 65535),
                .atMost = ReadBrightness(bright),
                .atLeast = ReadBrightness(dark),
                .steps = file.Whole<std::uint8_t>("steps", 1, table::sensor::kMostSteps)};
}

void ReadPositions(const Object& file, Plan& plan) {
  Settle(plan);
  if (!file.Has("positions")) return;
  const Object object = file.Sub("positions");
  object.Only({"nodes", "sensors", "lux_map", "fallback", "file_length"});
  const auto read = [&object](const char* key, std::uint16_t& position) {
    position = object.WholeOr<std::uint16_t>(key, 0, 65535, position);
  };
  read("nodes", plan.header.nodes);
  read("sensors", plan.header.sensors);
  read("lux_map", plan.header.luxMap);
  read("fallback", plan.header.fallback);
  read("file_length", plan.header.fileLength);
}

void ReadMixPlan(const Object& file, Plan& plan) {
  file.Only({"interface", "kind", "on", "runs", "gradual", "nodes", "sensors", "reading", "lux_map",
             "fallback", "positions", "extra"});
  plan.header.on = file.FlagOr("on", true);
  plan.header.runs = file.FlagOr("runs", true);
  plan.header.gradual = file.FlagOr("gradual", true);
  plan.header.interval_s = kUsualInterval_s;
  plan.header.readings = kUsualReadings;
  if (file.Has("reading")) {
    const Object reading = file.Sub("reading");
    reading.Only({"interval_s", "readings"});
    plan.header.interval_s = reading.Whole<std::uint16_t>("interval_s", 0, 65535);
    plan.header.readings = reading.Whole<std::uint8_t>("readings", 0, table::mix::kMostReadings);
  }
  if (file.Has("nodes")) plan.nodes = ReadList(file, "nodes", ReadMixNode);
  if (file.Has("sensors")) plan.sensors = ReadList(file, "sensors", ReadSensor);
  if (file.Has("lux_map")) plan.map = ReadList(file, "lux_map", ReadLuxItem);
  if (file.Has("fallback") && !file.At("fallback").is_null()) {
    plan.fallback = {true, file.Whole<std::uint8_t>("fallback", 0, 100)};
  }
  ReadPositions(file, plan);
}

Plan ReadPlan(const Value& text) {
  const Object file(text, "the file");
  const KindRow* row = RowOfWord(file.Text("kind"));
  if (row == nullptr || row->kind == Kind::kNone) {
    Wants("\"kind\"", "is list, sensor, mix, serial or hardware");
  }
  Plan plan;
  plan.kind = row->kind;
  if (plan.kind == Kind::kList) {
    ReadListPlan(file, plan);
  } else if (plan.kind == Kind::kSensor) {
    ReadSensorPlan(file, plan);
  } else {
    ReadMixPlan(file, plan);
  }
  plan.extra = ReadExtra(file);
  return plan;
}

}  // namespace

Result<Plan> ParsePlan(std::string_view text) {
  try {
    Plan plan = ReadPlan(Value::parse(text));
    const std::string obstacle = Obstacle(plan);
    if (!obstacle.empty()) return Error{Trouble::kWrongUse, obstacle};
    return plan;
  } catch (const nlohmann::json::exception& fault) {
    return Error{Trouble::kWrongUse, json::NotJson(fault)};
  } catch (const Fault& fault) {
    return Error{Trouble::kWrongUse, fault.text};
  }
}

}  // namespace quivord::brightness
