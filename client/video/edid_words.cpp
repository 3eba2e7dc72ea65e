// An EDID's facts in words, and as JSON.
#include <cstdio>

#include "video/edid_facts.h"
#include "video/mode.h"

namespace quivord::video {
namespace {

using namespace ZEPH_MCUC;
using Rows = std::vector<std::vector<std::string>>;

struct VicName {
  unsigned code;
  const char* name;
};
constexpr VicName kVics[] = {
    {1, "640 × 480 at 60 Hz"},
    {4, "1280 × 720 at 60 Hz"},
    {5, "1920 × 1080 interlaced at 60 Hz"},
    {16, "1920 × 1080 at 60 Hz"},
    {19, "1280 × 720 at 50 Hz"},
    {31, "1920 × 1080 at 50 Hz"},
    {32, "1920 × 1080 at 24 Hz"},
    {33, "1920 × 1080 at 25 Hz"},
    {34, "1920 × 1080 at 30 Hz"},
    {90, "2560 × 1080 at 60 Hz"},
    {93, "3840 × 2160 at 24 Hz"},
    {94, "3840 × 2160 at 25 Hz"},
    {95, "3840 × 2160 at 30 Hz"},
    {96, "3840 × 2160 at 50 Hz"},
    {97, "3840 × 2160 at 60 Hz"},
};

std::string VicText(unsigned code) {
  for (const VicName& vic : kVics) {
    if (vic.code == code) return vic.name;
  }
  return "CEA-861 code " + std::to_string(code);
}

std::string Hex(unsigned value, int digits) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%0*X", digits, value);
  return text;
}

std::string MakerText(const EdidFacts& facts) {
  std::string text = facts.manufacturer + " " + Hex(facts.product, 4) + ", serial number " +
                     Hex(facts.serial, 8) + ", made in ";
  if (facts.week >= 1 && facts.week <= 54) text += "week " + std::to_string(facts.week) + " of ";
  return text + std::to_string(facts.year);
}

std::string RangeText(const RateRange& range) {
  const auto span = [](unsigned least, unsigned most, const char* unit) {
    return std::to_string(least) + " to " + std::to_string(most) + unit;
  };
  return span(range.least_v_Hz, range.most_v_Hz, " Hz, ") +
         span(range.least_h_kHz, range.most_h_kHz, " kHz, up to ") +
         std::to_string(range.most_clock_MHz) + " MHz";
}

void AddTimings(const EdidFacts& facts, Rows& rows) {
  const char* what = "preferred";
  for (const DetailedTiming& timing : facts.timings) {
    rows.push_back({what, TimingText(timing)});
    rows.push_back({"", BlankingText(timing)});
    what = "timing";
  }
}

void AddExtension(const EdidFacts& facts, Rows& rows) {
  if (!facts.extension) return;
  for (const unsigned code : facts.vics) rows.push_back({"video mode", VicText(code)});
  rows.push_back({"audio", facts.basic_audio ? "yes" : "no"});
  rows.push_back({"HDMI", facts.hdmi ? "yes" : "no"});
}

}  // namespace

std::vector<std::vector<std::string>> EdidRows(const EdidFacts& facts) {
  Rows rows;
  if (const std::string fault = FaultText(facts); !fault.empty()) rows.push_back({"fault", fault});
  rows.push_back({"name", facts.name.empty() ? "none" : facts.name});
  rows.push_back({"maker", MakerText(facts)});
  rows.push_back({"version", facts.version});
  rows.push_back({"input", facts.input});
  AddTimings(facts, rows);
  if (facts.range) rows.push_back({"range", RangeText(*facts.range)});
  for (const VideoMode& mode : facts.standard) rows.push_back({"also", ModeText(mode)});
  AddExtension(facts, rows);
  return rows;
}

nlohmann::ordered_json EdidJson(const EdidFacts& facts) {
  using nlohmann::ordered_json;
  ordered_json object = {{"valid", FaultText(facts).empty()},
                         {"name", facts.name},
                         {"manufacturer", facts.manufacturer},
                         {"product", facts.product},
                         {"serial", facts.serial},
                         {"week", facts.week},
                         {"year", facts.year},
                         {"version", facts.version},
                         {"input", facts.input}};
  object["timings"] = ordered_json::array();
  for (const DetailedTiming& timing : facts.timings) {
    object["timings"].push_back(TimingJson(timing));
  }
  object["standard"] = ordered_json::array();
  for (const VideoMode& mode : facts.standard) {
    object["standard"].push_back(
        {{"width", mode.width}, {"height", mode.height}, {"rate_hz", mode.rate / 100.0}});
  }
  if (facts.range) {
    const RateRange& range = *facts.range;
    object["range"] = {{"vertical_hz", {range.least_v_Hz, range.most_v_Hz}},
                       {"horizontal_khz", {range.least_h_kHz, range.most_h_kHz}},
                       {"pixel_clock_mhz", range.most_clock_MHz}};
  }
  object["vics"] = facts.vics;
  object["audio"] = facts.basic_audio;
  object["hdmi"] = facts.hdmi;
  return object;
}

}  // namespace quivord::video
