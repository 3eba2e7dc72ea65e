#include "commands.h"
#include "commands/picture_mode.h"
#include "number_check.h"
#include "proto/calc_curves.h"
#include "subcommands.h"

namespace ctl {
namespace {

namespace hc = ZEPH_MCUC::hc;
using quivord::colour::Tables;

constexpr char kNotKept[] =
    "Not kept: after its next start the daemon takes the picture for the default mode.";
constexpr char kLeftOver[] =
    "The FPGA is still set for an HDR mode from before the daemon's start;\n"
    "'quivordctl hdr off' loads the default.";
constexpr char kOther[] =
    "The FPGA keeps the tables that it has, uploads aren't loaded;\n"
    "'quivordctl hdr off' loads the default.";

constexpr char kNeverChosen[] =
    "No mode was chosen since the daemon's start, and the FPGA keeps the tables that it had;\n"
    "'quivordctl hdr off' loads the default.";

std::string OffText(Tables tables) {
  const std::string text = "HDR is off";
  if (tables == Tables::kOfMode) return text;
  return text + "\n" + (tables == Tables::kLeftOver ? kLeftOver : kNeverChosen);
}

// What the FPGA is set for.
const char* FpgaName(const PictureMode& mode) {
  if (mode.tables == Tables::kUnknown) return "unknown";
  const bool off = mode.set.HDRType == hc::kDefaultMode && mode.tables == Tables::kOfMode;
  return off ? "default" : "hdr";
}

std::string ModeText(const PictureMode& mode) {
  const hc::HDRParaData& set = mode.set;
  switch (set.HDRType) {
    case hc::kHDR10:
      return "HDR10 for a screen of " + std::to_string(set.fScreenPeakLight) + " cd/m2 in " +
             std::to_string(set.fambientLight) + " lux, low gray " + std::to_string(set.pMinLum) +
             "\n" + kNotKept;
    case hc::kHLG: {
      const auto last = ZEPH_MCUC::curves::kHlgLastClass;
      const auto shown = std::min(set.HLGCalss, last);
      return "HLG of class " + std::to_string(set.HLGCalss) + ", " +
             std::to_string(ZEPH_MCUC::curves::kHlgPeaks_nits[shown]) + " cd/m2\n" + kNotKept;
    }
    case hc::kDefaultMode:
      return OffText(mode.tables);
    default:
      return "HDR type " + std::to_string(set.HDRType) + ", which is no mode\n" + kOther;
  }
}

nlohmann::json ModeJson(const PictureMode& mode) {
  const hc::HDRParaData& set = mode.set;
  return {{"mode", ModeName(set.HDRType)},
          {"peak", set.fScreenPeakLight},
          {"ambient", set.fambientLight},
          {"low_gray", set.pMinLum},
          {"class", set.HLGCalss},
          {"fpga", FpgaName(mode)},
          {"kept", false}};
}

Exit Say(const Context& context, Device& device) {
  PictureMode mode;
  const Answer answer = ReadMode(device, &mode);
  if (!answer.done()) return context.Fail(answer);
  context.out.Show(ModeText(mode), ModeJson(mode));
  return Exit::kDone;
}

// One parameter of a mode, where the command line names it.
struct Parameter {
  std::uint32_t offset;
  std::optional<std::uint16_t> value;
  int width = 1;
};

std::vector<std::uint8_t> BytesOf(const Parameter& parameter) {
  std::vector<std::uint8_t> bytes = {static_cast<std::uint8_t>(*parameter.value),
                                     static_cast<std::uint8_t>(*parameter.value >> 8)};
  bytes.resize(static_cast<std::size_t>(parameter.width));
  return bytes;
}

// The mode first: its parameters count only while it is chosen. Each write loads all tables.
Exit Choose(const Context& context, std::uint8_t type, const std::vector<Parameter>& parameters) {
  Exit exit = Exit::kDone;
  const auto device = Device::Open(context, exit);
  if (device == nullptr) return exit;
  Answer answer = ChooseMode(*device, type);
  if (!answer.done()) return context.Fail(answer);
  for (const Parameter& parameter : parameters) {
    if (!parameter.value.has_value()) continue;
    answer = device->Send(hc::kBase + parameter.offset, BytesOf(parameter));
    if (!answer.done()) return context.Fail(answer);
  }
  answer = device->AwaitWork();
  if (!answer.done()) return context.Fail(answer);
  return Say(context, *device);
}

Run DeclareShow(CLI::App& /*app*/) {
  return [](Context& context) {
    Exit exit = Exit::kDone;
    const auto device = Device::Open(context, exit);
    return device == nullptr ? exit : Say(context, *device);
  };
}

Run DeclareOff(CLI::App& /*app*/) {
  return [](Context& context) { return Choose(context, hc::kDefaultMode, {}); };
}

void DeclareNumber(CLI::App& app, const char* name, const char* meaning, int least, int most,
                   std::optional<std::uint16_t>* value) {
  app.add_option(name, *value, meaning)->type_name("N")->check(NumberFrom(least, most));
}

Run DeclareHdr10(CLI::App& app) {
  struct Words {
    std::optional<std::uint16_t> peak, ambient, low_gray;
  };
  const auto words = std::make_shared<Words>();
  DeclareNumber(app, "--peak", "Light of the screen at full brightness, cd/m2", 1, 65535,
                &words->peak);
  DeclareNumber(app, "--ambient", "Light in the room, lux", 0, 255, &words->ambient);
  DeclareNumber(app, "--low-gray", "Strength of the lift of dark grays", 0, 255, &words->low_gray);
  return [words](Context& context) {
    return Choose(context, hc::kHDR10,
                  {{hc::kPeakLight, words->peak, 2},
                   {hc::kAmbientLight, words->ambient},
                   {hc::kMinLum, words->low_gray}});
  };
}

Run DeclareHlg(CLI::App& app) {
  const auto hlg_class = std::make_shared<std::optional<std::uint16_t>>();
  DeclareNumber(app, "--class", "Of the screen: 300, 450, 600, 750, 1000, 1300, 1700 cd/m2", 0,
                ZEPH_MCUC::curves::kHlgLastClass, hlg_class.get());
  return [hlg_class](Context& context) {
    return Choose(context, hc::kHLG, {{hc::kHLGClass, *hlg_class}});
  };
}

constexpr Command kShow{"show", "Say which mode the picture is in", "  quivordctl hdr show\n",
                        DeclareShow};
constexpr Command kOff{"off", "Back to the default mode and its gamma tables",
                       "  quivordctl hdr off\n", DeclareOff};
constexpr Command kHdr10{"hdr10", "Show HDR10; what isn't given stays as it was",
                         "  quivordctl hdr hdr10 --peak 1200 --ambient 50\n", DeclareHdr10};
constexpr Command kHlg{"hlg", "Show HLG", "  quivordctl hdr hlg --class 4\n", DeclareHlg};

Run Declare(CLI::App& app) {
  static constexpr const Command* kCommands[] = {&kShow, &kOff, &kHdr10, &kHlg};
  return DeclareSubcommands(app, kCommands, &kShow);
}

}  // namespace

const Command kHdrCommand{
    "hdr",
    "Show HDR10, HLG or neither; none of it outlives a restart",
    "  quivordctl hdr hdr10 --peak 1200\n"
    "  quivordctl hdr off\n",
    Declare,
};

}  // namespace ctl
