// What the screen shows: the wall, the picture, the brightness plan.
#include <ctime>

#include "brightness/standing.h"
#include "brightness/text.h"
#include "brightness/words.h"
#include "live/describe.h"
#include "proto/calc_curves.h"
#include "wall/pattern.h"
#include "wall/text.h"
#include "wall/words.h"

namespace quivord::live {
namespace {

namespace hc = ZEPH_MCUC::hc;
namespace feature = ZEPH_MCUC::feature;
namespace registers = ZEPH_MCUC::pattern;

Json PortJson(const wall::Port& port) {
  Json json = {{"cards", port.cards},
               {"window", {port.window.x, port.window.y, port.window.width, port.window.height}},
               {"backup", port.backup}};
  if (port.mode.has_value()) json["mode"] = wall::ModeText(*port.mode);
  if (port.repeats.has_value()) {
    json["repeats"] = *port.repeats;
    return json;
  }
  Json& at = json["at"] = Json::array();
  for (const wall::Corner& corner : port.cabinets) {
    at.push_back(corner.x);
    at.push_back(corner.y);
  }
  return json;
}

Json CurvesJson(const colour::GammaSet& set) {
  constexpr std::size_t kStep = 64;  // codes between two points of a curve
  constexpr const char* kNames[] = {"red", "green", "blue"};
  Json json = Json::object();
  for (std::size_t i = 0; i < set.size(); ++i) {
    Json& curve = json[kNames[i]] = Json::array();
    for (std::size_t code = 0; code <= ZEPH_MCUC::kGammaEntries; code += kStep) {
      curve.push_back(ZEPH_MCUC::GammaEntry(set[i], std::min(code, ZEPH_MCUC::kGammaEntries - 1)));
    }
  }
  const std::string red = colour::CurveText(set[0]);
  json["text"] = set[1] == set[0] && set[2] == set[0]
                     ? red
                     : "red: " + red + "; green: " + colour::CurveText(set[1]) +
                           "; blue: " + colour::CurveText(set[2]);
  return json;
}

std::string ModeWords(const hc::HDRParaData& mode) {
  if (mode.HDRType == hc::kHDR10) {
    return "HDR10, " + std::to_string(mode.fScreenPeakLight) + " cd/m², " +
           std::to_string(mode.fambientLight) + " lux in the room";
  }
  if (mode.HDRType == hc::kHLG) return "HLG, class " + std::to_string(mode.HLGCalss);
  return "HDR";
}

Json HdrJson(const Snapshot& snapshot) {
  const bool on = snapshot.cells[feature::kHdrSwitch] == hc::kSwitchHDR;
  const bool tables = snapshot.picture.tables == hc::kTablesLoaded;
  Json json = {{"on", on},
               {"text", on ? ModeWords(hc::DecodeHDR(snapshot.picture.request)) : "off"}};
  if (on && !tables) json["note"] = "the switch is set, but its tables are not loaded";
  return json;
}

// Where the FPGA's meaning isn't known, the page says what it draws instead.
Json PatternJson(std::span<const std::uint8_t, registers::kUsed> image) {
  const std::uint8_t type = image[registers::kType];
  if (type == registers::kNone) return {{"kind", "none"}, {"text", "none"}};
  const auto pattern = wall::UnderstandPattern(image);
  if (!pattern.has_value()) {
    return {{"kind", "unknown"},
            {"text", "type " + std::to_string(type)},
            {"note", "what this type looks like, or a step of 0, is the FPGA's own; not drawn"}};
  }
  const bool blocks = pattern->kind == wall::Pattern::Kind::kBlocks;
  return {{"kind", blocks ? "blocks" : "pixels"},
          {"text", wall::PatternText(*pattern)},
          {"note",
           "place and step are the generator's; what the FPGA fills it with isn't known, so "
           "it is drawn in white, of blocks every other one"},
          {"first", {pattern->firstX, pattern->firstY}},
          {"step", {pattern->stepX, pattern->stepY}}};
}

std::optional<brightness::table::Moment> MomentOf(const Snapshot& snapshot) {
  constexpr int kYears = 100;  // 1900 to 2000
  const auto seconds = static_cast<std::time_t>(BoardTime_us(snapshot) / 1000000);
  std::tm parts{};
  if (localtime_r(&seconds, &parts) == nullptr) return std::nullopt;
  if (parts.tm_year < kYears || parts.tm_year >= 2 * kYears) return std::nullopt;
  const auto byte = [](int value) { return static_cast<std::uint8_t>(value); };
  return brightness::table::Moment{byte(parts.tm_year - kYears), byte(parts.tm_mon + 1),
                                   byte(parts.tm_mday),          byte(parts.tm_hour),
                                   byte(parts.tm_min),           byte(parts.tm_sec),
                                   byte(parts.tm_wday + 1)};
}

std::string PlanWords(const brightness::Plan& plan) {
  const std::string kind = brightness::RowOf(plan.kind).text;
  const std::string sensing = brightness::SensingText(plan);
  return sensing.empty() ? kind : kind + "; " + sensing;
}

}  // namespace

Json DescribeWall(const Snapshot& snapshot) {
  const wall::Wall wall = wall::Understand(snapshot.device);
  Json ports = Json::object();
  for (const wall::Port& port : wall.ports) {
    if (port.cards != 0) ports[std::to_string(port.number)] = PortJson(port);
  }
  return {{"kind", wall::KindWord(wall.kind)},
          {"screen", {wall.screen.width, wall.screen.height}},
          {"card", {wall.card.width, wall.card.height}},
          {"cabinets", wall.cabinets()},
          {"ports", ports}};
}

Json DescribePicture(const Snapshot& snapshot) {
  return {{"hdr", HdrJson(snapshot)},
          {"curves", CurvesJson(snapshot.picture.gamma)},
          {"pattern", PatternJson(snapshot.picture.pattern)}};
}

Json DescribePlan(const Snapshot& snapshot) {
  const std::span<const std::uint8_t> area(snapshot.plan);
  const auto plan =
      brightness::PlanOf(area.first(std::min(brightness::TableSize(area), area.size())));
  const auto& row = brightness::RowOf(plan.kind);
  Json json = {{"kind", row.word}, {"text", PlanWords(plan)}};
  const auto now = MomentOf(snapshot);
  const auto standing = now.has_value() ? brightness::StandingAt(plan, *now) : std::nullopt;
  if (!standing.has_value()) return json;
  const auto lines = brightness::NodeLines(plan);
  const auto& force = lines[standing->node];
  json["force"] = {{"since", force.time}, {"what", force.what}, {"today", standing->today}};
  if (standing->next.has_value()) {
    const auto& next = lines[*standing->next];
    json["next"] = {{"time", next.time}, {"what", next.what}, {"in_min", standing->next_in_min}};
  }
  return json;
}

}  // namespace quivord::live
