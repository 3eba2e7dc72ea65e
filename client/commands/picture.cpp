#include "commands.h"
#include "device.h"
#include "number_check.h"
#include "proto/calc_hc.h"
#include "subcommands.h"

namespace ctl {
namespace {

namespace hc = ZEPH_MCUC::hc;
using Colour = hc::CSCParaData;

constexpr int kMost = 100;  // of saturation and contrast: twice as much as in the picture
constexpr std::uint16_t kCircle = 360;
constexpr char kNotKept[] = "Not kept: what the FPGA holds is gone when it loads anew.";
constexpr char kUnset[] =
    "Nobody has set it since the daemon's start; the FPGA goes on with what it holds.";

struct Words {
  std::optional<int> saturation, contrast, hue;

  bool any() const { return saturation || contrast || hue; }
};

bool IsZero(const Colour& colour) {
  return colour.Saturation == 0 && colour.Contrast == 0 && colour.Hue == 0;
}

// As the daemon shows it: contrast first.
Colour ColourOf(std::span<const std::uint8_t> bytes) {
  using ZEPH_MCUC::DWQ_DECWD;
  return {.Saturation = DWQ_DECWD(&bytes[2]),
          .Contrast = DWQ_DECWD(&bytes[0]),
          .Hue = DWQ_DECWD(&bytes[4])};
}

std::string ColourText(const Colour& colour) {
  return "saturation " + std::to_string(colour.Saturation) + ", contrast " +
         std::to_string(colour.Contrast) + ", hue " + std::to_string(colour.Hue % kCircle);
}

nlohmann::json ColourJson(const Colour& colour, bool set) {
  return {{"saturation", colour.Saturation},
          {"contrast", colour.Contrast},
          {"hue", colour.Hue % kCircle},
          {"set", set}};
}

// All zeros are how the daemon shows that nobody has set anything: who wants them gets the hue once
// around the circle.
Colour With(Colour colour, const Words& words) {
  if (words.saturation) colour.Saturation = static_cast<std::uint16_t>(*words.saturation);
  if (words.contrast) colour.Contrast = static_cast<std::uint16_t>(*words.contrast);
  if (words.hue) colour.Hue = static_cast<std::uint16_t>((*words.hue + kCircle) % kCircle);
  if (IsZero(colour)) colour.Hue = kCircle;
  return colour;
}

Exit Set(const Context& context, Device& device, const Colour& colour) {
  const auto same = [colour](std::span<const std::uint8_t> bytes) {
    return hc::Encode(ColourOf(bytes)) == hc::Encode(colour);
  };
  const auto low = [](std::uint16_t value) { return static_cast<std::uint8_t>(value); };
  const Answer answer =
      device.Write({.address = hc::kBase + hc::kColour,
                    .data = {low(colour.Saturation), low(colour.Contrast), low(colour.Hue),
                             static_cast<std::uint8_t>(colour.Hue >> 8)},
                    .shown_at = hc::kBase + hc::kColour,
                    .shown_length = hc::kColourRead,
                    .shows = same});
  if (answer.done()) {
    context.out.Show(ColourText(colour) + "\n" + kNotKept, ColourJson(colour, true));
    return Exit::kDone;
  }
  return context.Fail(
      answer.exit, answer.text.empty() ? "the device took it, but doesn't show it" : answer.text);
}

// Sets what `words` say, and shows what holds where they say nothing.
Exit Do(const Context& context, const Words& words) {
  Exit exit = Exit::kDone;
  const auto device = Device::Open(context, exit);
  if (device == nullptr) return exit;
  const Answer answer = device->ReadBytes(hc::kBase + hc::kColour, hc::kColourRead);
  if (!answer.done()) return context.Fail(answer);
  const Colour shown = ColourOf(answer.data);
  const bool set = !IsZero(shown);
  const Colour now = set ? shown : Colour{};  // the neutral values are as good a guess as any
  if (words.any()) return Set(context, *device, With(now, words));
  context.out.Show(ColourText(now) + (set ? "" : std::string("\n") + kUnset), ColourJson(now, set));
  return Exit::kDone;
}

Run DeclareSet(CLI::App& app) {
  const auto words = std::make_shared<Words>();
  app.add_option("--saturation", words->saturation, "0 is gray, 50 as it comes, 100 twice as much")
      ->type_name("N")
      ->check(NumberFrom(0, kMost));
  app.add_option("--contrast", words->contrast, "0 is dark, 50 as it comes, 100 twice as much")
      ->type_name("N")
      ->check(NumberFrom(0, kMost));
  app.add_option("--hue", words->hue, "Degrees that colours turn by")
      ->type_name("N")
      ->check(NumberFrom(-180, 359));
  return [words](Context& context) {
    if (words->any()) return Do(context, *words);
    return context.Fail(Exit::kWrongUse, "give --saturation, --contrast or --hue");
  };
}

constexpr Command kShow{
    "show", "Show saturation, contrast and hue", "  quivordctl picture show\n",
    [](CLI::App& /*app*/) -> Run { return [](Context& context) { return Do(context, {}); }; }};
constexpr Command kSet{
    "set", "Set them",
    "  quivordctl picture set --saturation 60 --hue -5\n"
    "What isn't given stays as it was, or 50, 50 and 0 where nobody has set it since the daemon's\n"
    "  start.",
    DeclareSet};

Run Declare(CLI::App& app) {
  static constexpr const Command* kCommands[] = {&kShow, &kSet};
  return DeclareSubcommands(app, kCommands, &kShow);
}

}  // namespace

const Command kPictureCommand{
    "picture",
    "Show or set saturation, contrast and hue",
    "  quivordctl picture\n"
    "  quivordctl picture set --saturation 60 --hue -5\n",
    Declare,
};

}  // namespace ctl
