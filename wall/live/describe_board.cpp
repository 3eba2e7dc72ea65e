// The board itself: folder, daemon, time, links, what lies around it.
#include <algorithm>
#include <ctime>

#include "live/cardlist.h"
#include "live/describe.h"
#include "proto/calc_feature_words.h"
#include "video/edid_facts.h"
#include "video/mode.h"

namespace quivord::live {
namespace {

using namespace ZEPH_MCUC;

std::span<const std::uint8_t> BytesOf(const Snapshot& snapshot, const FeatureRegister& row) {
  return std::span(snapshot.cells).subspan(row.offset, row.width);
}

std::string Text(const Snapshot& snapshot, const char* name) {
  const FeatureRegister& row = *FindFeature(name);
  return FeatureText(row, BytesOf(snapshot, row));
}

std::vector<int> Ports(const Snapshot& snapshot, std::initializer_list<const char*> names) {
  std::vector<int> ports;
  for (const char* name : names) {
    const FeatureRegister& row = *FindFeature(name);
    const auto more = FeaturePorts(row, BytesOf(snapshot, row));
    ports.insert(ports.end(), more.begin(), more.end());
  }
  return ports;
}

std::vector<std::string> TracedKinds(const board::Settings& settings) {
  std::vector<std::string> kinds;
  for (int kind = 0; kind < board::kTraceKinds; ++kind) {
    if ((settings.trace_kinds >> kind & 1U) != 0) kinds.emplace_back(board::TraceKindName(kind));
  }
  return kinds;
}

std::string LocalTime(std::int64_t time_us, const char* format) {
  const auto seconds = static_cast<std::time_t>(time_us / 1000000);
  std::tm parts{};
  char text[64] = "no time that exists";
  if (localtime_r(&seconds, &parts) != nullptr) {
    std::strftime(text, sizeof text, format, &parts);
  }
  return text;
}

Json InputJson(const board::Input& input, const Snapshot& snapshot) {
  char id[16];
  std::snprintf(id, sizeof id, "0x%04X", input.id);
  Json json = {{"id", id}, {"type", input.type}};
  const auto edid = snapshot.edids.find(input.id);
  if (edid == snapshot.edids.end()) {
    json["fault"] = "its EDID is missing or cut short";
    return json;
  }
  const auto facts = video::ReadEdid(edid->second);
  if (!facts.has_value()) return json;
  if (const std::string fault = video::FaultText(*facts); !fault.empty()) json["fault"] = fault;
  json["name"] = facts->name;
  if (!facts->timings.empty()) json["mode"] = video::TimingText(facts->timings.front());
  return json;
}

}  // namespace

std::int64_t BoardTime_us(const Snapshot& snapshot) {
  const std::int64_t speed = snapshot.settings.speed;
  std::int64_t base = snapshot.now_us;
  if (speed > 1 && snapshot.daemon.pid != 0) {
    const std::int64_t start = snapshot.daemon.started_us;
    base = start + std::max<std::int64_t>(snapshot.now_us - start, 0) * speed;
  }
  // The offset is whatever stands in the file.
  std::int64_t time = 0;
  return __builtin_add_overflow(base, snapshot.offset_us, &time) ? base : time;
}

Json DescribeBoard(const Snapshot& snapshot) {
  return {{"folder", snapshot.folder},
          {"exists", snapshot.exists},
          {"troubles", snapshot.troubles},
          {"loaded", snapshot.fpga_loaded},
          {"slot", snapshot.settings.slot},
          {"speed", snapshot.settings.speed},
          {"trace", TracedKinds(snapshot.settings)},
          {"daemon", {{"running", snapshot.daemon.pid != 0}, {"pid", snapshot.daemon.pid}}}};
}

Json DescribeTime(const Snapshot& snapshot) {
  const std::string text = LocalTime(BoardTime_us(snapshot), "%Y-%m-%d %H:%M:%S");
  return {{"text", text}, {"about", snapshot.settings.speed > 1}};
}

Json DescribeScreen(const Snapshot& snapshot) {
  const auto number = [&snapshot](const char* name) {
    return FeatureNumber(BytesOf(snapshot, *FindFeature(name)));
  };
  return {{"output", Text(snapshot, "output")},
          {"open", snapshot.cells[feature::kOutput] == feature::kOutputOpen},
          {"source",
           {{"width", number("source-width")},
            {"height", number("source-height")},
            {"state", Text(snapshot, "source")}}}};
}

Json DescribeLinks(const Snapshot& snapshot) {
  return {{"copper", Ports(snapshot, {"link-0-3", "link-4-7", "link-8-15"})},
          {"fiber1", Ports(snapshot, {"fiber-1-links"})},
          {"fiber2", Ports(snapshot, {"fiber-2-links"})},
          {"redundant", Ports(snapshot, {"redundancy-0-3", "redundancy-4-7", "redundancy-8-15"})},
          {"fiber", Text(snapshot, "fiber-link")}};
}

Json DescribeCards(const Snapshot& snapshot) {
  const CardList list = ReadCards(snapshot.cards);
  Json ports = Json::object();
  for (const auto& [port, runs] : list.ports) {
    Json& rows = ports[std::to_string(port)] = Json::array();
    for (const auto& [count, s] : runs) {
      rows.push_back({count, s.brightness, s.colours[0], s.colours[1], s.colours[2], s.colours[3],
                      s.screen, s.mapping, s.takesPart ? 1 : 0, s.width, s.height});
    }
  }
  return {{"ports", ports}, {"devices", list.devices}};
}

Json DescribeInputs(const Snapshot& snapshot) {
  Json inputs = Json::object();
  for (std::size_t i = 0; i < snapshot.settings.inputs.size(); ++i) {
    const auto& input = snapshot.settings.inputs[i];
    if (input.has_value()) inputs[std::to_string(i)] = InputJson(*input, snapshot);
  }
  return inputs;
}

Json DescribeOutside(const Snapshot& snapshot) {
  Json faults = Json::object();
  for (const board::FaultRow& row : board::kFaultTable) {
    const auto count = snapshot.faults[static_cast<std::size_t>(row.fault)];
    if (count != 0) faults[std::string(row.name)] = count;
  }
  return {{"lux", snapshot.lux}, {"faults", faults}};
}

Json DescribeLog(const Snapshot& snapshot) {
  constexpr const char* kKinds[] = {"request", "refusal", "report"};
  Json entries = Json::object();
  for (const LogEntry& entry : snapshot.log) {
    entries[std::to_string(entry.number)] = {
        {"at", LocalTime(snapshot.trace_epoch_us + entry.at_us, "%H:%M:%S")},
        {"kind", kKinds[static_cast<int>(entry.kind)]},
        {"text", entry.text}};
  }
  return {{"passed_over", snapshot.trace_passed_over}, {"entries", entries}};
}

}  // namespace quivord::live
