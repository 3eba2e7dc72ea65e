#include "wall/pattern.h"
#include "commands.h"
#include "device.h"
#include "number_check.h"
#include "proto/calc_pattern.h"
#include "subcommands.h"

namespace ctl {
namespace {

namespace pattern = ZEPH_MCUC::pattern;

using Image = std::array<std::uint8_t, pattern::kUsed>;

// What the command line says of a pattern, on each axis.
struct Axis {
  std::optional<int> step;
  int first = 0;
};

struct Words {
  Axis x, y;
};

// The registers of one axis, x or y.
struct Place {
  std::uint32_t first;
  std::uint32_t step;
};
struct Places {
  std::uint8_t type;
  Place x, y;
};
constexpr Places kPixelPlaces{pattern::kPixels,
                              {pattern::kFirstPixelX, pattern::kPixelIntervalX},
                              {pattern::kFirstPixelY, pattern::kPixelIntervalY}};
constexpr Places kBlockPlaces{pattern::kBlocks,
                              {pattern::kFirstPixelX, pattern::kBlockWidth},
                              {pattern::kFirstPixelY, pattern::kBlockHeight}};

Answer ReadImage(Device& device, Image* image) {
  const Answer answer = device.ReadBytes(pattern::kBase, image->size());
  if (answer.done()) std::copy(answer.data.begin(), answer.data.end(), image->begin());
  return answer;
}

Exit Say(const Context& context, const Image& image) {
  const auto shown = quivord::wall::UnderstandPattern(image);
  if (!shown.has_value()) {
    context.out.Show("no pattern", {{"pattern", "off"}});
    return Exit::kDone;
  }
  const bool blocks = shown->kind == quivord::wall::Pattern::Kind::kBlocks;
  context.out.Show(quivord::wall::PatternText(*shown), {{"pattern", blocks ? "block" : "pixel"},
                                                        {"step", {shown->stepX, shown->stepY}},
                                                        {"first", {shown->firstX, shown->firstY}}});
  return Exit::kDone;
}

void SetAxis(const Axis& axis, const Place& place, Image* image) {
  ZEPH_MCUC::DWQ_ENCWD(&(*image)[place.first], static_cast<std::uint16_t>(axis.first));
  if (axis.step) {
    ZEPH_MCUC::DWQ_ENCWD(&(*image)[place.step], static_cast<std::uint16_t>(*axis.step));
  }
}

// Sends all fields that a client may set in one write, so that the FPGA never shows half a change,
// and waits until the FPGA has them with their phases.
Exit Send(const Context& context, Device& device, Image image) {
  constexpr std::uint32_t kFrom = pattern::kFirstPixelX;
  if (pattern::SetPhases(image) != pattern::Phases::kSet) {
    return context.Fail(Exit::kWrongUse,
                        "not sent: the first pixel lies in the first step, the first block on the "
                        "screen or over its edge");
  }
  const std::vector<std::uint8_t> data(image.begin() + kFrom, image.end());
  const auto same = [image](std::span<const std::uint8_t> shown) {
    return std::equal(shown.begin(), shown.end(), image.begin() + pattern::kType, image.end());
  };
  const Answer answer =
      device.Write({.address = pattern::kBase + kFrom,
                    .data = data,
                    .shown_at = CellRegister(pattern::kBus + pattern::kType),
                    .shown_length = static_cast<std::uint16_t>(pattern::kUsed - pattern::kType),
                    .shows = same});
  if (answer.done()) return Say(context, image);
  return context.Fail(answer.exit,
                      answer.text.empty() ? "the FPGA doesn't show the pattern" : answer.text);
}

// Reads the registers, lets `change` change them, and sends them.
template <class Change>
Exit Modify(const Context& context, Change change) {
  Exit exit = Exit::kDone;
  const auto device = Device::Open(context, exit);
  if (device == nullptr) return exit;
  Image image{};
  const Answer answer = ReadImage(*device, &image);
  if (!answer.done()) return context.Fail(answer);
  return change(*device, &image);
}

Run DeclareShow(CLI::App& /*app*/) {
  return [](Context& context) {
    return Modify(context,
                  [&context](Device& /*device*/, Image* image) { return Say(context, *image); });
  };
}

Run DeclareOff(CLI::App& /*app*/) {
  return [](Context& context) {
    return Modify(context, [&context](Device& device, Image* image) {
      (*image)[pattern::kType] = pattern::kNone;
      return Send(context, device, *image);
    });
  };
}

Run Draws(const Places& places, const std::shared_ptr<Words>& words) {
  return [places, words](Context& context) {
    return Modify(context, [&](Device& device, Image* image) {
      (*image)[pattern::kType] = places.type;
      SetAxis(words->x, places.x, image);
      SetAxis(words->y, places.y, image);
      return Send(context, device, *image);
    });
  };
}

void DeclareAxis(CLI::App& app, const char* step, const char* first, Axis* axis) {
  app.add_option(step, axis->step, "Pixels from one to the next")
      ->required()
      ->type_name("N")
      ->check(NumberFrom(1, 65535));
  app.add_option(first, axis->first, "Where the first one is, pixels")
      ->type_name("N")
      ->check(NumberFrom(-32768, 32767));
}

Run DeclarePixel(CLI::App& app) {
  const auto words = std::make_shared<Words>();
  DeclareAxis(app, "--every-x", "--first-x", &words->x);
  DeclareAxis(app, "--every-y", "--first-y", &words->y);
  return Draws(kPixelPlaces, words);
}

Run DeclareBlock(CLI::App& app) {
  const auto words = std::make_shared<Words>();
  DeclareAxis(app, "--width", "--first-x", &words->x);
  DeclareAxis(app, "--height", "--first-y", &words->y);
  return Draws(kBlockPlaces, words);
}

constexpr Command kShow{"show", "Say what the FPGA shows", "  quivordctl pattern show\n",
                        DeclareShow};
constexpr Command kOff{"off", "No pattern", "  quivordctl pattern off\n", DeclareOff};
constexpr Command kPixel{"pixel", "One pixel in each step",
                         "  quivordctl pattern pixel --every-x 8 --every-y 8\n", DeclarePixel};
constexpr Command kBlock{"block", "Blocks side by side",
                         "  quivordctl pattern block --width 128 --height 128 --first-x -64\n",
                         DeclareBlock};

Run Declare(CLI::App& app) {
  static constexpr const Command* kCommands[] = {&kPixel, &kBlock, &kOff, &kShow};
  return DeclareSubcommands(app, kCommands, &kShow);
}

}  // namespace

const Command kPatternCommand{
    "pattern",
    "Let the FPGA draw a test pattern over the screen",
    "  quivordctl pattern pixel --every-x 8 --every-y 8\n"
    "  quivordctl pattern block --width 128 --height 128\n"
    "  quivordctl wall draw --pattern pattern.png\n"
    "  quivordctl pattern off\n",
    Declare,
};

}  // namespace ctl
