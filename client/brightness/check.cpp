#include "brightness/check.h"

#include <algorithm>
#include <array>

#include "brightness/words.h"

namespace quivord::brightness {
namespace {

std::string Text(std::size_t number) { return std::to_string(number); }

std::string NodeText(std::size_t i, std::uint8_t hour, std::uint8_t minute) {
  return "node " + Text(i) + " (" + TimeText(hour, minute) + ")";
}

// The nodes are a ring that a day goes through once.
template <class Node>
std::string OrderObstacle(const std::vector<Node>& nodes) {
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const auto minute = MinuteOf(nodes[i].hour, nodes[i].minute);
    const std::string name = NodeText(i, nodes[i].hour, nodes[i].minute);
    if (!minute.has_value()) return name + " has no time of a day";
    if (i > 0 && *minute <= *MinuteOf(nodes[i - 1].hour, nodes[i - 1].minute)) {
      return name + " does not come after node " + Text(i - 1) +
             ": nodes stand in the order of the day";
    }
  }
  return {};
}

std::string CountObstacle(const char* what, std::size_t count, std::size_t least,
                          std::size_t most) {
  if (count >= least && count <= most) return {};
  return std::string(what) + ": " + Text(count) + ", but " + Text(least) + " to " + Text(most) +
         " are needed";
}

std::string SensorsObstacle(const Plan& plan, std::size_t least) {
  std::string obstacle =
      CountObstacle("\"sensors\"", plan.sensors.size(), least, table::sensor::kMostSensors);
  for (std::size_t i = 0; i < plan.sensors.size() && obstacle.empty(); ++i) {
    const table::Sensor& sensor = plan.sensors[i];
    if (sensor.position != 0) {
      obstacle = "sensor " + Text(i) + " is at position " + Text(sensor.position) +
                 ", where no device reads one";
    } else if (sensor.port > 9 || sensor.address > 5) {
      obstacle = "sensor " + Text(i) + ": a port goes to 9, an address to 5";
    }
  }
  return obstacle;
}

std::string ListObstacle(const Plan& plan) {
  std::string obstacle = CountObstacle("\"nodes\"", plan.list.size(), 1, table::list::kMostNodes);
  return obstacle.empty() ? OrderObstacle(plan.list) : obstacle;
}

std::string SensorObstacle(const Plan& plan) {
  const table::LuxRange& range = plan.range;
  if (range.leastLux >= range.mostLux) {
    return "\"dark\" has as much lux as \"bright\", or more";
  }
  if (range.steps < 1 || range.steps > table::sensor::kMostSteps) {
    return "\"steps\" is a number from 1 to 32";
  }
  return SensorsObstacle(plan, 1);
}

std::string MapObstacle(const Plan& plan) {
  for (std::size_t i = 0; i < plan.map.size(); ++i) {
    if (plan.map[i].percent > 100) return "\"lux_map\": more than 100 percent";
    if (i > 0 && plan.map[i].lux <= plan.map[i - 1].lux) {
      return "\"lux_map\": entry " + Text(i) + " has no more lux than the one before";
    }
  }
  return {};
}

struct Place {
  const char* name;
  std::size_t begin;
  std::size_t size;

  std::size_t end() const { return begin + size; }
};

std::string PlacesObstacle(const Plan& plan) {
  namespace at = table::mix;
  const table::MixHeader& header = plan.header;
  std::array<Place, 5> places = {
      {{"the header", 0, at::kHeaderSize},
       {"the nodes", header.nodes, 1 + plan.nodes.size() * at::kNodeSize},
       {"the sensors", header.sensors, 1 + plan.sensors.size() * at::kSensorSize},
       {"the lux map", header.luxMap, 1 + plan.map.size() * at::kLuxItemSize},
       {"the fallback", header.fallback, at::kFallbackSize}}};
  std::ranges::sort(places, {}, &Place::begin);
  for (std::size_t i = 1; i < places.size(); ++i) {
    if (places[i].begin < places[i - 1].end()) {
      return std::string(places[i].name) + " would lie on " + places[i - 1].name;
    }
  }
  if (places.back().end() > table::kAreaSize) {
    return "the plan takes " + Text(places.back().end()) + " bytes, a device holds " +
           Text(table::kAreaSize);
  }
  if (header.fileLength < places.back().end() || header.fileLength > table::kAreaSize) {
    return "the file's length of " + Text(header.fileLength) + " does not hold " +
           places.back().name;
  }
  return {};
}

std::string MixObstacle(const Plan& plan) {
  const auto used = [](const table::MixNode& node) { return node.valid == 1; };
  const bool sensed = std::ranges::any_of(
      plan.nodes, [&](const table::MixNode& node) { return used(node) && node.sensor; });
  const bool runs = plan.kind != Kind::kSerial;
  std::string obstacle = CountObstacle("\"nodes\"", plan.nodes.size(), runs ? 1 : 0, 255);
  if (obstacle.empty()) obstacle = OrderObstacle(plan.nodes);
  if (obstacle.empty() && runs && std::ranges::none_of(plan.nodes, used)) {
    obstacle = "no node is in use";
  }
  if (obstacle.empty()) obstacle = SensorsObstacle(plan, sensed ? 1 : 0);
  if (obstacle.empty()) {
    obstacle =
        CountObstacle("\"lux_map\"", plan.map.size(), sensed ? 1 : 0, table::mix::kMostLuxItems);
  }
  if (obstacle.empty()) obstacle = MapObstacle(plan);
  if (obstacle.empty() && plan.header.readings > table::mix::kMostReadings) {
    obstacle = "\"readings\": an average holds 16 at most";
  }
  return obstacle.empty() ? PlacesObstacle(plan) : obstacle;
}

std::string ExtraObstacle(const Plan& plan) {
  const std::size_t size = TableOf(plan).size();
  for (const Extra& extra : plan.extra) {
    if (extra.at == 0) return "\"extra\" changes the plan's kind";
    if (extra.at + extra.bytes.size() > size) return "\"extra\" reaches past the table";
  }
  return {};
}

}  // namespace

std::string Obstacle(const Plan& plan) {
  std::string obstacle;
  if (plan.kind == Kind::kNone) obstacle = "there is no plan";
  if (plan.kind == Kind::kList) obstacle = ListObstacle(plan);
  if (plan.kind == Kind::kSensor) obstacle = SensorObstacle(plan);
  if (IsMixFamily(plan.kind)) obstacle = MixObstacle(plan);
  return obstacle.empty() ? ExtraObstacle(plan) : obstacle;
}

std::string WeekdayWarning(const Plan& plan) {
  std::string nodes;
  std::size_t count = 0;
  for (std::size_t i = 0; i < plan.nodes.size(); ++i) {
    const table::MixNode& node = plan.nodes[i];
    if (node.valid != 1 || (node.weekdays & kEveryDay) == kEveryDay) continue;
    nodes += (nodes.empty() ? "" : ", ") + Text(i) + " (" + TimeText(node.hour, node.minute) + ")";
    ++count;
  }
  if (count == 0) return {};
  return (count == 1 ? "node " : "nodes ") + nodes + (count == 1 ? " does" : " do") +
         " not run every day. Days count from Monday when a node's time comes, but from Sunday "
         "when "
         "the plan starts: after a start, the node in force may be off by a day until the next "
         "one's time comes";
}

}  // namespace quivord::brightness
