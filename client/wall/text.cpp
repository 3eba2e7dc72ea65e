#include "wall/text.h"

#include <cstdio>

#include "counted.h"
#include "wall/file.h"
#include "wall/words.h"

namespace quivord::wall {
namespace {

using nlohmann::ordered_json;

std::string AsciiSize(std::uint64_t width, std::uint64_t height) {
  return SizeText(width, height, " x ");
}

std::string HowText(const Wall& wall) {
  switch (wall.kind) {
    case Kind::kSmart:
      return Counted(wall.smart.rows, "row") + " and " + Counted(wall.smart.columns, "column") +
             ", cabled " + ModeWord(wall.smart.mode) + " (mode " + std::to_string(wall.smart.mode) +
             "), " + Counted(wall.smart.perCable, "cabinet") + " a cable";
    case Kind::kAdvanced:
      return "each port placed by its own record";
    case Kind::kSoftware:
      return "laid out by a configuration tool";
    default:
      return "not configured yet";
  }
}

std::string RoleText(const Port& port) {
  std::string text = port.main() ? "main" : "as port " + std::to_string(*port.repeats);
  if (port.backup) text += ", backup";
  return text;
}

std::string Line(const std::string& port, const std::string& cards, const std::string& window,
                 const std::string& at, const std::string& role) {
  char line[128];
  std::snprintf(line, sizeof line, "%4s  %5s  %-13s  %-12s  %s", port.c_str(), cards.c_str(),
                window.c_str(), at.c_str(), role.c_str());
  return line;
}

ordered_json PortJson(const Port& port) {
  const ZEPH_MCUC::PortWindow& window = port.window;
  ordered_json repeats = nullptr;
  if (port.repeats.has_value()) repeats = *port.repeats;
  return {{"port", port.number},
          {"cards", port.cards},
          {"window",
           {{"x", window.x}, {"y", window.y}, {"width", window.width}, {"height", window.height}}},
          {"repeats", repeats},
          {"backup", port.backup}};
}

ordered_json SizeJson(const Size& size) { return {{"width", size.width}, {"height", size.height}}; }

}  // namespace

const char* KindWord(Kind kind) {
  switch (kind) {
    case Kind::kSmart:
      return "smart";
    case Kind::kAdvanced:
      return "advanced";
    case Kind::kSoftware:
      return "software";
    default:
      return "none";
  }
}

std::string ShowText(const Wall& wall) {
  std::string text = "wall of " + AsciiSize(wall.screen.width, wall.screen.height) + " pixels, " +
                     Counted(wall.cabinets(), "cabinet") + " of " +
                     AsciiSize(wall.card.width, wall.card.height) + "\n" + HowText(wall) + "\n\n" +
                     Line("port", "cards", "window", "at", "role");
  for (const Port& port : wall.ports) {
    text += '\n';
    text +=
        Line(std::to_string(port.number), std::to_string(port.cards),
             AsciiSize(port.window.width, port.window.height),
             std::to_string(port.window.x) + ", " + std::to_string(port.window.y), RoleText(port));
  }
  return text;
}

ordered_json ShowJson(const Wall& wall) {
  ordered_json object = {{"kind", KindWord(wall.kind)}};
  if (wall.kind == Kind::kSmart) object.update(SmartJson(wall.smart));
  object["screen"] = SizeJson(wall.screen);
  object["card"] = SizeJson(wall.card);
  object["cabinets"] = wall.cabinets();
  object["ports"] = ordered_json::array();
  for (const Port& port : wall.ports) object["ports"].push_back(PortJson(port));
  return object;
}

}  // namespace quivord::wall
