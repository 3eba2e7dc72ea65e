// A plan as JSON.
#include "brightness/file.h"
#include "brightness/words.h"

namespace quivord::brightness {
namespace {

using Json = nlohmann::ordered_json;

// What JSON has words for. Bytes that it hasn't go into `extra`.
Plan Sayable(const Plan& plan) {
  Plan said = plan;
  for (table::MixNode& node : said.nodes) {
    node.valid = node.valid == 1 ? 1 : 0;
    node.weekdays &= kEveryDay;
    if (node.sensor) node.percent = 0;
  }
  if (!said.fallback.enabled) said.fallback.percent = 0;
  for (table::ListNode& node : said.list) {
    if (!said.colours) node.red = node.green = node.blue = node.virtualRed = 0;
  }
  said.extra.clear();
  return said;
}

template <class Record, class Make>
Json ListJson(const std::vector<Record>& records, Make make) {
  Json list = Json::array();
  for (const Record& record : records) list.push_back(make(record));
  return list;
}

Json SensorJson(const table::Sensor& sensor) {
  Json object = Json::object();
  if (sensor.position != 0) object["position"] = sensor.position;
  object["port"] = sensor.port;
  object["card"] = sensor.board;
  object["address"] = sensor.address;
  return object;
}

Json BitsJson(std::uint8_t mask, std::size_t bits, const char* const* names) {
  Json list = Json::array();
  for (std::size_t bit = 0; bit < bits; ++bit) {
    if ((mask >> bit & 1) == 0) continue;
    list.push_back(names == nullptr ? Json(bit) : Json(names[bit]));
  }
  return list;
}

Json MixNodeJson(const table::MixNode& node) {
  Json object = {{"time", TimeText(node.hour, node.minute)}};
  if (node.weekdays != kEveryDay) {
    object["days"] = BitsJson(node.weekdays, kDays.size(), kDays.data());
  }
  if (node.sensor) {
    object["sensor"] = true;
  } else {
    object["percent"] = node.percent;
  }
  if (node.valid != 1) object["use"] = false;
  return object;
}

Json ListNodeJson(const table::ListNode& node, bool colours) {
  Json object = {{"time", TimeText(node.hour, node.minute)},
                 {"brightness", node.brightness},
                 {"ports", BitsJson(node.ports, table::list::kPortsDriven, nullptr)}};
  if (colours) {
    object["colours"] = {{"red", node.red},
                         {"green", node.green},
                         {"blue", node.blue},
                         {"virtual_red", node.virtualRed}};
  }
  return object;
}

void AddSensor(const Plan& plan, Json& object) {
  const table::LuxRange& range = plan.range;
  object["sensors"] = ListJson(plan.sensors, SensorJson);
  object["dark"] = {{"lux", range.leastLux}, {"brightness", range.atLeast}};
  object["bright"] = {{"lux", range.mostLux}, {"brightness", range.atMost}};
  object["steps"] = range.steps;
}

// Only where the sub-tables don't follow one another.
void AddPositions(const Plan& plan, Json& object) {
  Plan settled = plan;
  Settle(settled);
  if (settled.header == plan.header) return;
  object["positions"] = {{"nodes", plan.header.nodes},
                         {"sensors", plan.header.sensors},
                         {"lux_map", plan.header.luxMap},
                         {"fallback", plan.header.fallback},
                         {"file_length", plan.header.fileLength}};
}

void AddMix(const Plan& plan, Json& object) {
  object["on"] = plan.header.on;
  object["runs"] = plan.header.runs;
  object["gradual"] = plan.header.gradual;
  object["nodes"] = ListJson(plan.nodes, MixNodeJson);
  object["sensors"] = ListJson(plan.sensors, SensorJson);
  object["reading"] = {{"interval_s", plan.header.interval_s}, {"readings", plan.header.readings}};
  object["lux_map"] = ListJson(plan.map, [](const table::LuxItem& item) {
    return Json{{"lux", item.lux}, {"percent", item.percent}};
  });
  object["fallback"] = plan.fallback.enabled ? Json(plan.fallback.percent) : Json(nullptr);
  AddPositions(plan, object);
}

std::string Hex(const Bytes& bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0x0F];
  }
  return text;
}

// A value in one line.
std::string Inline(const Json& value) {
  if (!value.is_structured()) return value.dump();
  std::string text;
  for (const auto& [key, inner] : value.items()) {
    if (!text.empty()) text += ", ";
    if (value.is_object()) text += Json(key).dump() + ": ";
    text += Inline(inner);
  }
  return value.is_object() ? "{" + text + "}" : "[" + text + "]";
}

// A list with its entries a line each.
std::string Lines(const Json& list) {
  std::string text;
  for (const Json& entry : list) text += (text.empty() ? "" : ",") + ("\n    " + Inline(entry));
  return "[" + text + "\n  ]";
}

}  // namespace

std::string FileText(const Plan& plan) {
  const Json object = PlanJson(plan);
  std::string text;
  for (const auto& [key, value] : object.items()) {
    const bool lines = value.is_array() && !value.empty();
    text += (text.empty() ? "{\n" : ",\n") + ("  " + Json(key).dump()) + ": " +
            (lines ? Lines(value) : Inline(value));
  }
  return text + "\n}";
}

Json PlanJson(const Plan& plan) {
  const Plan said = Sayable(plan);
  Json object = {{"kind", RowOf(plan.kind).word}};
  if (plan.kind == Kind::kList) {
    object["nodes"] = ListJson(
        said.list, [&](const table::ListNode& node) { return ListNodeJson(node, said.colours); });
  } else if (plan.kind == Kind::kSensor) {
    AddSensor(said, object);
  } else if (IsMixFamily(plan.kind)) {
    AddMix(said, object);
  }
  const auto extra = ExtraOf(said, TableOf(plan));
  if (!extra.empty()) {
    object["extra"] = ListJson(extra, [](const Extra& stretch) {
      return Json{{"at", stretch.at}, {"bytes", Hex(stretch.bytes)}};
    });
  }
  return object;
}

}  // namespace quivord::brightness
