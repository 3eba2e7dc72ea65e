#include "wall/file.h"

#include "json/object.h"

namespace quivord::wall {
namespace {

using json::Fault;
using json::Object;
using json::Value;
using json::Wants;
using ZEPH_MCUC::kConnectionModes;

std::uint8_t ReadMode(const Object& object) {
  const Value& value = object.At("cables");
  const auto mode = ParseMode(value.is_string() ? value.get<std::string>() : value.dump());
  if (!mode.has_value()) {
    Wants(object.Place("cables"), "is a connection mode, such as top-left-rows");
  }
  return *mode;
}

Smart ReadSmart(const Object& file) {
  file.Only({"interface", "kind", "rows", "columns", "cables", "per_cable"});
  return {.rows = file.Whole<std::uint8_t>("rows", 1, 255),
          .columns = file.Whole<std::uint8_t>("columns", 1, 255),
          .perCable = file.Whole<std::uint16_t>("per_cable", 1, 65535),
          .mode = ReadMode(file)};
}

PortRecord ReadPort(const Object& port) {
  port.Only({"port", "cables", "rows", "columns", "x", "y"});
  return {.mode = ReadMode(port),
          .rows = port.Whole<std::uint8_t>("rows", 1, 255),
          .columns = port.Whole<std::uint8_t>("columns", 1, 255),
          .x = port.Whole<std::uint16_t>("x", 0, 65535),
          .y = port.Whole<std::uint16_t>("y", 0, 65535)};
}

PortRecords ReadPorts(const Object& file) {
  file.Only({"interface", "kind", "ports"});
  PortRecords records{};
  for (std::size_t i = 0; i < file.List("ports").size(); ++i) {
    const Object port = file.Entry("ports", i);
    const auto number = port.Whole<std::size_t>("port", 0, kPorts - 1);
    if (!records[number].empty()) Wants("port " + std::to_string(number), "is there twice");
    records[number] = ReadPort(port);
  }
  return records;
}

WallFile ReadFile(const Value& text) {
  const Object file(text, "the file");
  WallFile wall;
  const Value& kind = file.At("kind");
  if (kind == "smart") {
    wall.kind = Kind::kSmart;
    wall.smart = ReadSmart(file);
  } else if (kind == "advanced") {
    wall.kind = Kind::kAdvanced;
    wall.records = ReadPorts(file);
  } else {
    Wants("\"kind\"", "is smart or advanced");
  }
  return wall;
}

}  // namespace

Result<WallFile> ParseFile(std::string_view text) {
  try {
    return ReadFile(Value::parse(text));
  } catch (const nlohmann::json::exception& fault) {
    return Error{Trouble::kWrongUse, json::NotJson(fault)};
  } catch (const Fault& fault) {
    return Error{Trouble::kWrongUse, fault.text};
  }
}

nlohmann::ordered_json SmartJson(const Smart& smart) {
  return {{"kind", "smart"},
          {"rows", smart.rows},
          {"columns", smart.columns},
          {"cables", ModeWord(smart.mode)},
          {"per_cable", smart.perCable}};
}

nlohmann::ordered_json AdvancedJson(const PortRecords& records) {
  nlohmann::ordered_json ports = nlohmann::ordered_json::array();
  for (std::size_t port = 0; port < kPorts; ++port) {
    const PortRecord& record = records[port];
    if (record.empty()) continue;
    ports.push_back({{"port", port},
                     {"cables", ModeWord(record.mode)},
                     {"rows", record.rows},
                     {"columns", record.columns},
                     {"x", record.x},
                     {"y", record.y}});
  }
  return {{"kind", "advanced"}, {"ports", ports}};
}

std::optional<std::uint8_t> ParseMode(std::string_view word) {
  for (std::size_t mode = 0; mode < kConnectionModes.size(); ++mode) {
    if (word == kConnectionModes[mode].name || word == std::to_string(mode)) {
      return static_cast<std::uint8_t>(mode);
    }
  }
  return std::nullopt;
}

std::string ModeWord(std::uint8_t mode) {
  return ZEPH_MCUC::IsConnectionMode(mode) ? kConnectionModes[mode].name : std::to_string(mode);
}

}  // namespace quivord::wall
