#include "commands.h"
#include "numbers.h"
#include "process/calc_window.h"
#include "process/cvt.h"
#include "table.h"
#include "video/mode.h"

namespace ctl {
namespace {

using namespace ZEPH_MCUC;
namespace video = quivord::video;
using Rows = std::vector<std::vector<std::string>>;

struct Words {
  std::string mode;
};

std::string Number(double value, const char* unit) {
  char text[48];
  std::snprintf(text, sizeof text, "%.3f%s", value, unit);
  return text;
}

std::string Fields(std::initializer_list<std::pair<const char*, int>> fields) {
  std::string text;
  for (const auto& [name, value] : fields) {
    text += (text.empty() ? "" : ", ") + std::string(name) + " " + std::to_string(value);
  }
  return text;
}

// Where the timing is from, with all fields of that.
void AddOrigin(const ChosenTiming& chosen, const VideoMode& mode, Rows& rows,
               nlohmann::ordered_json& object) {
  if (chosen.mode != INVALID_MODE) {
    const mode_table_t& row = Modes()[chosen.mode];
    rows.push_back({"from", std::string("mode table, row ") + std::to_string(chosen.mode) + " " +
                                ModeName(chosen.mode)});
    rows.push_back({"row", Fields({{"h_freq", row.h_freq},
                                   {"v_freq", row.v_freq},
                                   {"h_total", row.h_total},
                                   {"v_total", row.v_total},
                                   {"h_blanking", row.h_blanking},
                                   {"h_sync", row.h_sync},
                                   {"h_start", row.h_start},
                                   {"v_blanking", row.v_blanking},
                                   {"v_sync", row.v_sync},
                                   {"v_start", row.v_start}})});
    object["from"] = "table";
    object["row"] = chosen.mode;
    object["name"] = ModeName(chosen.mode);
    return;
  }
  cvt_mode m;
  const auto rate = static_cast<float>(mode.rate / 100.0);
  if (!vert_refresh(mode.width, mode.height, rate, 0, 1, 0, 0, &m)) return;
  rows.push_back({"from", "calculation, reduced blanking"});
  rows.push_back({"calculated", Fields({{"hr", m.hr},
                                        {"hss", m.hss},
                                        {"hse", m.hse},
                                        {"hfl", m.hfl},
                                        {"vr", m.vr},
                                        {"vss", m.vss},
                                        {"vse", m.vse},
                                        {"vfl", m.vfl}})});
  rows.push_back(
      {"", Number(m.pclk, " MHz, ") + Number(m.h_freq, " kHz, ") + Number(m.real_v_rate, " Hz")});
  object["from"] = "calculation";
  object["pclk_mhz"] = m.pclk;
  object["h_freq_khz"] = m.h_freq;
  object["real_v_rate_hz"] = m.real_v_rate;
}

void AddOutput(const VideoMode& mode, Rows& rows, nlohmann::ordered_json& object) {
  const auto output = CalculateOutput(mode.width, mode.height, mode.rate);
  if (!output) {
    rows.push_back({"as an output", "none: its rate is below 1 Hz"});
    object["output"] = nullptr;
    return;
  }
  const _OutputResPara& p = output->para;
  rows.push_back({"as an output", Number(output->clock_hz / 1e6, " MHz, two pixels a clock")});
  rows.push_back({"", Fields({{"HsTotal", p.HsTotal},
                              {"HsSynStart", p.HsSynStart},
                              {"HsDeStart", p.HsDeStart},
                              {"HsDeEnd", p.HsDeEnd},
                              {"VsTotal", p.VsTotal},
                              {"VsSynStart", p.VsSynStart},
                              {"VsDeStart", p.VsDeStart},
                              {"VsDeEnd", p.VsDeEnd}})});
  object["output"] = {
      {"clock_hz", output->clock_hz}, {"hs_total", p.HsTotal},      {"hs_sync", p.HsSynStart},
      {"hs_de_start", p.HsDeStart},   {"hs_de_end", p.HsDeEnd},     {"vs_total", p.VsTotal},
      {"vs_sync", p.VsSynStart},      {"vs_de_start", p.VsDeStart}, {"vs_de_end", p.VsDeEnd}};
}

Exit Show(Context& context, const Words& words) {
  const auto mode = video::ParseMode(words.mode);
  if (!mode) return context.Fail(Exit::kWrongUse, video::kModeRule);
  const auto chosen = ChooseTiming(mode->width, mode->height, mode->rate);
  if (!chosen) return context.Fail(Exit::kRefused, video::ModeText(*mode) + " has no timing");
  Rows rows;
  nlohmann::ordered_json object = {
      {"width", mode->width}, {"height", mode->height}, {"rate_hz", mode->rate / 100.0}};
  AddOrigin(*chosen, *mode, rows, object);
  const std::uint32_t clock = TuneClock(chosen->timing, mode->rate);
  DetailedTiming shown = chosen->timing;
  const bool fits = FitsDescriptor(shown, clock);
  if (fits) shown.PixelClock = clock * kDescriptorClock_Hz;
  const Descriptor bytes = EncodeDescriptor(chosen->timing, clock);
  rows.push_back({"timing", video::TimingText(shown)});
  rows.push_back({"", video::BlankingText(shown)});
  const std::string descriptor = HexText({bytes.begin(), bytes.end()});
  rows.push_back({"in an EDID", fits ? descriptor : "doesn't fit a descriptor"});
  object["timing"] = video::TimingJson(shown);
  object["descriptor"] = fits ? nlohmann::ordered_json(descriptor) : nullptr;
  AddOutput(*mode, rows, object);
  context.out.Show(video::ModeText(*mode) + "\n" + Columns(rows), object);
  return Exit::kDone;
}

Run Declare(CLI::App& app) {
  const auto words = std::make_shared<Words>();
  app.add_option("MODE", words->mode, "WIDTHxHEIGHT@RATE, such as 1920x1080@59.94")->required();
  return [words](Context& context) { return Show(context, *words); };
}

}  // namespace

const Command kTimingCommand{
    "timing",
    "Show which timing the device takes for a mode; asks no device",
    "  quivordctl timing 1920x1080@59.94\n"
    "  quivordctl timing 2560x1080@50\n",
    Declare,
};

}  // namespace ctl
