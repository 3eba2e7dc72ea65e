#include <cmath>

#include "commands/gamma_commands.h"
#include "commands/picture_mode.h"
#include "json/load.h"
#include "number_check.h"
#include "proto/calc_rgbgamma.h"

namespace ctl {
namespace {

using quivord::colour::GammaSet;
namespace rgbgamma = ZEPH_MCUC::rgbgamma;

constexpr std::size_t kPieces = 3 * ZEPH_MCUC::kGammaTableSize / kGammaPiece;

struct Words {
  std::string file;
  std::optional<double> exponent;
  int depth = 10;

  rgbgamma::Set set() const { return depth == 12 ? rgbgamma::Set::k12Bit : rgbgamma::Set::k10Bit; }
};

quivord::Result<GammaSet> WantedSet(const Words& words) {
  if (words.exponent.has_value() == !words.file.empty()) {
    return quivord::Error{quivord::Trouble::kWrongUse, "give a FILE or an --exponent"};
  }
  if (!words.exponent.has_value())
    return quivord::json::Load(words.file, "gamma tables", quivord::colour::ParseGamma);
  const auto table = ZEPH_MCUC::PowerTable(*words.exponent, words.depth);
  return GammaSet{table, table, table};
}

// The order matters: the last piece of blue is what loads the set.
Answer SendPieces(const Context& context, Device& device, rgbgamma::Set which,
                  const GammaSet& set) {
  std::size_t sent = 0;
  for (const rgbgamma::Table& table : rgbgamma::TablesOf(which)) {
    const auto& bytes = set[static_cast<std::size_t>(table.colour)];
    for (std::uint32_t at = 0; at < bytes.size(); at += kGammaPiece) {
      Answer answer =
          device.Send(table.reg + at, {bytes.begin() + at, bytes.begin() + at + kGammaPiece});
      if (!answer.done()) return answer;
      context.out.Progress("sent", ++sent, kPieces);
    }
  }
  return {};
}

// Notes the exponent, in tenths, beside the set; of a file, that none is known.
Answer SendExponent(Device& device, const Words& words) {
  const auto tenths =
      words.exponent ? static_cast<std::uint8_t>(std::lround(*words.exponent * 10)) : kNoExponent;
  for (const rgbgamma::Value& value : rgbgamma::kValues) {
    if (value.set == words.set()) return device.Send(value.reg, {tenths});
  }
  return {};
}

Answer CheckLoaded(Device& device, const GammaSet& wanted) {
  GammaSet held;
  Answer answer = ReadGamma(device, &held);
  if (!answer.done() || held == wanted) return answer;
  return {Exit::kRefused, "the device took the set, but the FPGA doesn't hold it", {}};
}

std::string StoredText(int depth, bool loaded) {
  const std::string text = "stored the " + std::to_string(depth) + "-bit set";
  if (depth == 12) {
    return loaded ? text +
                        " and loaded it\nWhatever loads the default mode later takes the "
                        "10-bit set: upload this one again then."
                  : text +
                        "\nThe picture isn't in the default mode, and what brings that back loads "
                        "the 10-bit set: upload this one again then.";
  }
  return loaded ? text +
                      " and loaded it\nKept, but not loaded by itself after a power-up: "
                      "'quivordctl gamma load' does that."
                : text +
                      "\nThe picture isn't in the default mode: 'quivordctl hdr off' loads the "
                      "set.";
}

Exit Upload(const Context& context, const Words& words) {
  const auto set = WantedSet(words);
  if (!set) return context.Fail(set.error());
  Exit exit = Exit::kDone;
  const auto device = Device::Open(context, exit);
  if (device == nullptr) return exit;
  PictureMode mode;
  Answer answer = ReadMode(*device, &mode);
  const bool loads = mode.set.HDRType == ZEPH_MCUC::hc::kDefaultMode;
  if (answer.done()) answer = SendPieces(context, *device, words.set(), set.value());
  if (answer.done()) answer = SendExponent(*device, words);
  if (answer.done()) answer = device->AwaitWork();
  if (answer.done() && loads) answer = CheckLoaded(*device, set.value());
  if (!answer.done()) return context.Fail(answer);
  context.out.Show(StoredText(words.depth, loads), {{"depth", words.depth}, {"loaded", loads}});
  return Exit::kDone;
}

Run Declare(CLI::App& app) {
  const auto words = std::make_shared<Words>();
  app.add_option("FILE", words->file, "Tables: numbers as text, or bytes as the FPGA takes them");
  app.add_option("--exponent", words->exponent, "A power curve instead of a file")
      ->type_name("E")
      ->check(NumberFrom(0.1, 25.0));
  app.add_option("--depth", words->depth, "Bits of the signal that the set is for")
      ->type_name("BITS")
      ->check(CLI::IsMember({10, 12}))
      ->capture_default_str();
  return [words](Context& context) { return Upload(context, *words); };
}

}  // namespace

const Command kGammaUpload{
    "upload",
    "Store a set of gamma tables and load it",
    "  quivordctl gamma upload --exponent 2.4\n"
    "  quivordctl gamma upload tables.csv --depth 12\n"
    "A file of text has 4096 or 1024 lines, an input code a line from dark to bright: a number "
    "from\n"
    "  0 to 65535, or three for red, green and blue. A binary one has 8192 or 3 times 8192 "
    "bytes.\n",
    Declare,
};

}  // namespace ctl
