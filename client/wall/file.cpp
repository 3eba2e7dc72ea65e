#include "wall/file.h"

#include <algorithm>
#include <initializer_list>

namespace quivord::wall {
namespace {

using nlohmann::json;
using ZEPH_MCUC::kConnectionModes;

// The first fault ends the reading; it says where and what is wanted.
struct Fault {
  std::string text;
};

[[noreturn]] void Wants(const std::string& where, const std::string& what) {
  throw Fault{where + " " + what};
}

// One object of a file, and the words that lead to it.
class Object {
 public:
  Object(const json& value, std::string where) : value_(value), where_(std::move(where)) {
    if (!value.is_object()) Wants(where_, "is an object");
  }

  const json& At(const char* key) const {
    if (!value_.contains(key)) Wants(where_, std::string("has no \"") + key + "\"");
    return value_.at(key);
  }

  template <class Value>
  Value Number(const char* key, std::int64_t least, std::int64_t most) const {
    const json& value = At(key);
    const bool whole = value.is_number_integer();
    if (!whole || value < least || value > most) {
      Wants(Place(key),
            "is a number from " + std::to_string(least) + " to " + std::to_string(most));
    }
    return value.get<Value>();
  }

  std::uint8_t Mode(const char* key) const {
    const json& value = At(key);
    const auto mode = ParseMode(value.is_string() ? value.get<std::string>() : value.dump());
    if (!mode.has_value()) Wants(Place(key), "is a connection mode, such as top-left-rows");
    return *mode;
  }

  void Only(std::initializer_list<std::string_view> keys) const {
    for (const auto& [key, value] : value_.items()) {
      if (std::ranges::find(keys, key) == keys.end())
        Wants(where_, "has \"" + key + "\", which is unknown");
    }
  }

 private:
  std::string Place(const char* key) const { return where_ + ": \"" + key + "\""; }

  const json& value_;
  std::string where_;
};

Smart ReadSmart(const Object& file) {
  file.Only({"kind", "rows", "columns", "cables", "per_cable"});
  return {.rows = file.Number<std::uint8_t>("rows", 1, 255),
          .columns = file.Number<std::uint8_t>("columns", 1, 255),
          .perCable = file.Number<std::uint16_t>("per_cable", 1, 65535),
          .mode = file.Mode("cables")};
}

PortRecord ReadPort(const Object& port) {
  port.Only({"port", "cables", "rows", "columns", "x", "y"});
  return {.mode = port.Mode("cables"),
          .rows = port.Number<std::uint8_t>("rows", 1, 255),
          .columns = port.Number<std::uint8_t>("columns", 1, 255),
          .x = port.Number<std::uint16_t>("x", 0, 65535),
          .y = port.Number<std::uint16_t>("y", 0, 65535)};
}

PortRecords ReadPorts(const Object& file) {
  file.Only({"kind", "ports"});
  const json& ports = file.At("ports");
  if (!ports.is_array()) Wants("\"ports\"", "is a list");
  PortRecords records{};
  for (std::size_t i = 0; i < ports.size(); ++i) {
    const Object port(ports[i], "entry " + std::to_string(i) + " of \"ports\"");
    const auto number = port.Number<std::size_t>("port", 0, kPorts - 1);
    if (!records[number].empty()) Wants("port " + std::to_string(number), "is there twice");
    records[number] = ReadPort(port);
  }
  return records;
}

WallFile ReadFile(const json& text) {
  const Object file(text, "the file");
  WallFile wall;
  const json& kind = file.At("kind");
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
    return ReadFile(json::parse(text));
  } catch (const json::exception& fault) {
    return Error{Trouble::kWrongUse, std::string("not JSON: ") + fault.what()};
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
