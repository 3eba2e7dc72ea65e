#include "brightness/text.h"

#include <algorithm>
#include <cstdio>

#include "brightness/check.h"
#include "brightness/file.h"
#include "brightness/standing.h"
#include "brightness/words.h"
#include "counted.h"
#include "process/calc_time.h"

namespace quivord::brightness {
namespace {

std::string Number(std::size_t number) { return std::to_string(number); }

std::string PortsText(std::uint8_t mask) {
  std::string ports;
  std::size_t count = 0;
  for (std::size_t port = 0; port < table::list::kPortsDriven; ++port) {
    if ((mask >> port & 1) == 0) continue;
    ports += (ports.empty() ? "" : ", ") + Number(port);
    ++count;
  }
  if (count == 0) return "on no port";
  return (count == 1 ? "on port " : "on ports ") + ports;
}

std::string SwitchesText(const Plan& plan) {
  if (!plan.header.runs) return ", set not to run";
  std::string text = plan.header.gradual ? ", changes gradually" : ", changes at once";
  if (!plan.header.on) text += ", switched off";
  return text;
}

std::string MomentText(const table::Moment& now) {
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d (%s)", 2000 + now.year, now.month,
                now.day, now.hour, now.minute, now.second,
                kDays[ZEPH_MCUC::WeekdayOf(now.year, now.month, now.day) - 1U]);
  return text;
}

std::string InText(int minutes) {
  const int days = minutes / (24 * 60);
  const int hours = minutes / 60 % 24;
  std::string text = days > 0 ? Counted(static_cast<std::size_t>(days), "day") + " " : "";
  if (hours > 0) text += Number(static_cast<std::size_t>(hours)) + " h ";
  return text + Number(static_cast<std::size_t>(minutes % 60)) + " min";
}

std::string StandingText(const Plan& plan, const table::Moment& now) {
  const auto standing = StandingAt(plan, now);
  if (!standing.has_value()) return "in force: no node";
  const auto lines = NodeLines(plan);
  const NodeLine& node = lines[standing->node];
  // Whether the outside device is heard right now, no register says.
  std::string text =
      plan.kind == Kind::kHardware ? "in force while the device is silent" : "in force";
  text += ": node " + Number(standing->node) + ", since " + node.time + ": " + node.what +
          (standing->today ? "" : " (not today: the screen stays as it was)");
  if (standing->next.has_value()) {
    const NodeLine& next = lines[*standing->next];
    text += "\nnext: node " + Number(*standing->next) + " at " + next.time + ", in " +
            InText(standing->next_in_min) + ": " + next.what;
  }
  return text;
}

std::string NodesText(const Plan& plan) {
  std::string text = "\n\nnode  time   days         brightness";
  const auto lines = NodeLines(plan);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    char line[160];
    std::snprintf(line, sizeof line, "\n%4zu  %-5s  %-11s  %s%s", i, lines[i].time.c_str(),
                  lines[i].days.c_str(), lines[i].what.c_str(),
                  lines[i].inUse ? "" : " (not in use)");
    text += line;
  }
  return text;
}

std::string SensorsText(const Plan& plan) {
  std::string text = "\n\nsensors";
  for (const table::Sensor& sensor : plan.sensors) {
    text += "\n  port " + Number(sensor.port) + ", card " + Number(sensor.board) + ", address " +
            Number(sensor.address);
    if (sensor.position != 0) text += ", position " + Number(sensor.position) + " (not read)";
  }
  return text;
}

std::string LightText(const Plan& plan) {
  std::string text = "\n\n   lux  brightness";
  const auto row = [&text](std::uint16_t lux, const std::string& value) {
    char line[64];
    std::snprintf(line, sizeof line, "\n%6u  %s", lux, value.c_str());
    text += line;
  };
  if (plan.kind == Kind::kSensor) {
    row(plan.range.leastLux, BrightnessText(plan.range.atLeast));
    row(plan.range.mostLux,
        BrightnessText(plan.range.atMost) + ", in " + Counted(plan.range.steps, "step"));
  }
  for (const table::LuxItem& item : plan.map) row(item.lux, Number(item.percent) + "%");
  return text;
}

}  // namespace

std::string NodeText(const table::MixNode& node) {
  return node.sensor ? "light sensor" : Number(node.percent) + "%";
}

std::string NodeText(const table::ListNode& node) {
  return BrightnessText(node.brightness) + " " + PortsText(node.ports);
}

std::vector<NodeLine> NodeLines(const Plan& plan) {
  std::vector<NodeLine> lines;
  for (const table::ListNode& node : plan.list) {
    std::string what = NodeText(node);
    if (plan.colours) {
      what += ", red " + Number(node.red) + " green " + Number(node.green) + " blue " +
              Number(node.blue) + " virtual red " + Number(node.virtualRed);
    }
    lines.push_back({TimeText(node.hour, node.minute), "every day", what});
  }
  for (const table::MixNode& node : plan.nodes) {
    lines.push_back({TimeText(node.hour, node.minute), DaysText(node.weekdays), NodeText(node),
                     node.valid == 1});
  }
  return lines;
}

std::string SensingText(const Plan& plan) {
  if (plan.sensors.empty()) return {};
  const std::string sensors = Counted(plan.sensors.size(), "light sensor");
  if (plan.kind == Kind::kSensor) {
    return sensors + ", read every 20 seconds; six readings an average";
  }
  const auto interval = std::max<std::size_t>(plan.header.interval_s, 1);
  const auto readings = std::max<std::size_t>(plan.header.readings, 1);
  return sensors + ", read every " + (interval == 1 ? "second" : Counted(interval, "second")) +
         "; " + Counted(readings, "reading") + " an average" +
         (plan.fallback.enabled ? "; " + Number(plan.fallback.percent) + "% where they fail" : "");
}

std::string ShowText(const Plan& plan, const std::optional<table::Moment>& now) {
  std::string text = "plan: " + std::string(RowOf(plan.kind).text);
  if (IsMixFamily(plan.kind)) text += SwitchesText(plan);
  if (now.has_value()) text += "\nclock: " + MomentText(*now);
  const bool nodes = !plan.list.empty() || !plan.nodes.empty();
  if (nodes && now.has_value()) text += "\n" + StandingText(plan, *now);
  if (const std::string sensing = SensingText(plan); !sensing.empty()) {
    text += "\nlight: " + sensing;
  }
  if (nodes) text += NodesText(plan);
  if (!plan.sensors.empty()) text += SensorsText(plan);
  if (plan.kind == Kind::kSensor || !plan.map.empty()) text += LightText(plan);
  if (const std::string warning = WeekdayWarning(plan); !warning.empty()) {
    text += "\n\nnote: " + warning;
  }
  return text;
}

nlohmann::ordered_json ShowJson(const Plan& plan, const std::optional<table::Moment>& now) {
  nlohmann::ordered_json object = PlanJson(plan);
  object["in_force"] = nullptr;
  object["next"] = nullptr;
  if (!now.has_value()) return object;
  const auto standing = StandingAt(plan, *now);
  if (!standing.has_value()) return object;
  object["in_force"] = {{"node", standing->node}, {"today", standing->today}};
  if (standing->next.has_value()) {
    object["next"] = {{"node", *standing->next}, {"in_min", standing->next_in_min}};
  }
  return object;
}

}  // namespace quivord::brightness
