#include "board/settings.h"

#include <algorithm>

#include "board/text.h"

namespace board {
namespace {

constexpr std::array<std::string_view, kTraceKinds> kTraceKindNames = {
    "fpga", "flash", "card", "bus", "shell", "env", "clock", "clockchip", "edid", "net", "info"};

constexpr std::array<std::string_view, kDeviceTypes> kDeviceNames = {"cards", "multi", "boxes",
                                                                     "launchers"};

constexpr std::array<std::string_view, 11> kInputTypes = {
    "DVI", "DDVI", "HDMI14", "HDMI20", "DP11", "DP12", "DP14", "SDI3G", "SDI6G", "SDI12G", "VGA"};

// A key whose value is one number.
struct NumberKey {
  std::string_view name;
  std::uint32_t least;
  std::uint32_t most;
  void (*set)(Settings&, std::uint32_t);
};

constexpr std::array<NumberKey, 5> kNumberKeys = {{
    {"slot", 0, 255, [](Settings& s, std::uint32_t n) { s.slot = static_cast<std::uint8_t>(n); }},
    {"card.width", 0, 65535,
     [](Settings& s, std::uint32_t n) { s.card_width = static_cast<std::uint16_t>(n); }},
    {"card.height", 0, 65535,
     [](Settings& s, std::uint32_t n) { s.card_height = static_cast<std::uint16_t>(n); }},
    {"fpga.load_ms", 0, 86400000, [](Settings& s, std::uint32_t n) { s.fpga_load_ms = n; }},
    {"speed", 1, 2000, [](Settings& s, std::uint32_t n) { s.speed = n; }},
}};

constexpr std::uint32_t kMostDevices = 65535;  // board 0xFFFF stands for all of them

SettingResult Taken() { return {}; }
SettingResult UnknownKey(std::string_view key) {
  return {SettingResult::Kind::kUnknownKey, "unknown key '" + std::string(key) + "'"};
}
SettingResult BadValue(std::string_view value, const std::string& wanted) {
  return {SettingResult::Kind::kBadValue, "bad value '" + std::string(value) + "': " + wanted};
}

std::string NumberWanted(std::uint32_t least, std::uint32_t most) {
  return "a number from " + std::to_string(least) + " to " + std::to_string(most) + " is needed";
}

// The index in `name` where only plain decimal below `count` stands.
std::optional<std::size_t> Index(std::string_view name, int count) {
  if (name.empty() || name.size() > 2 || name.find_first_not_of("0123456789") != name.npos) {
    return std::nullopt;
  }
  const auto index = NumberBetween(name, 0, static_cast<std::uint32_t>(count) - 1);
  if (!index) return std::nullopt;
  return *index;
}

SettingResult ApplyPort(std::string_view key, std::string_view value, Settings& settings) {
  std::string_view rest = key.substr(std::string_view("port.").size());
  const auto port = Index(TakeUntil(rest, '.'), kPorts);
  const auto* const device = std::find(kDeviceNames.begin(), kDeviceNames.end(), rest);
  if (!port || device == kDeviceNames.end()) return UnknownKey(key);
  const auto number = NumberBetween(value, 0, kMostDevices);
  if (!number) return BadValue(value, NumberWanted(0, kMostDevices));
  const auto type = static_cast<std::size_t>(device - kDeviceNames.begin());
  settings.devices[*port][type] = static_cast<std::uint16_t>(*number);
  return Taken();
}

SettingResult ApplyInput(std::string_view key, std::string_view value, Settings& settings) {
  const auto index = Index(key.substr(std::string_view("input.").size()), kInputs);
  if (!index) return UnknownKey(key);
  if (value == "none") {
    settings.inputs[*index].reset();
    return Taken();
  }
  std::string_view rest = value;
  const auto id = NumberBetween(TakeUntil(rest, ' '), 0, 0xFFFF);
  const auto type = Trim(rest);
  if (!id || std::find(kInputTypes.begin(), kInputTypes.end(), type) == kInputTypes.end()) {
    return BadValue(value, "'none', or an object id and a type as in '0x0010 HDMI14' is needed");
  }
  settings.inputs[*index] = Input{static_cast<std::uint16_t>(*id), std::string(type)};
  return Taken();
}

SettingResult ApplyTrace(std::string_view value, Settings& settings) {
  std::uint32_t kinds = 0;
  if (value == "all") {
    kinds = (1U << kTraceKinds) - 1;
  } else if (value != "none") {
    for (std::string_view rest = value; !rest.empty(); rest = Trim(rest)) {
      const auto word = Trim(TakeUntil(rest, ' '));
      const auto* const kind = std::find(kTraceKindNames.begin(), kTraceKindNames.end(), word);
      if (kind == kTraceKindNames.end()) {
        return BadValue(
            value, "'all', 'none' or names of kinds are needed, not '" + std::string(word) + "'");
      }
      kinds |= 1U << (kind - kTraceKindNames.begin());
    }
    if (kinds == 0) return BadValue(value, "'all', 'none' or names of kinds are needed");
  }
  settings.trace_kinds = kinds;
  return Taken();
}

}  // namespace

SettingResult ApplySetting(std::string_view key, std::string_view value, Settings& settings) {
  for (const NumberKey& row : kNumberKeys) {
    if (row.name != key) continue;
    const auto number = NumberBetween(value, row.least, row.most);
    if (!number) return BadValue(value, NumberWanted(row.least, row.most));
    row.set(settings, *number);
    return Taken();
  }
  if (key.starts_with("port.")) return ApplyPort(key, value, settings);
  if (key.starts_with("input.")) return ApplyInput(key, value, settings);
  if (key == "trace") return ApplyTrace(value, settings);
  return UnknownKey(key);
}

std::string ParseSettings(std::string_view text, std::string_view file, Settings& settings) {
  for (int line_number = 1; !text.empty(); ++line_number) {
    std::string_view line = TakeUntil(text, '\n');
    line = Trim(line.substr(0, line.find('#')));
    if (line.empty()) continue;
    std::string reason = "a line is 'key = value'";
    if (line.find('=') != line.npos) {
      const auto key = Trim(TakeUntil(line, '='));
      reason = ApplySetting(key, Trim(line), settings).reason;
    }
    if (reason.empty()) continue;
    return std::string(file) + ":" + std::to_string(line_number) + ": " + reason;
  }
  return {};
}

std::string DefaultSettingsText() {
  return R"(# What is wired to this board. Read when a program starts on it; a later line wins.

slot = 0                # this card's slot, 0 to 255
card.width = 128        # pixels of one receiving card
card.height = 128

# Devices behind port n (0 to 15): port.n.cards, port.n.multi, port.n.boxes, port.n.launchers
port.0.cards = 6
port.0.multi = 1
port.1.cards = 6

# Input board i (0 to 15): object id and type, or none. Types: DVI DDVI HDMI14 HDMI20 DP11 DP12
# DP14 SDI3G SDI6G SDI12G VGA
input.0 = 0x0000 DVI
input.1 = 0x0010 HDMI14

fpga.load_ms = 500      # how long the FPGA takes to load after the daemon's start
speed = 1               # how many times faster time passes here, 1 to 2000

# all, none, or some of: fpga flash card bus shell env clock clockchip edid net info
trace = none
)";
}

std::string_view TraceKindName(int kind) { return kTraceKindNames[static_cast<std::size_t>(kind)]; }

}  // namespace board
