#include "commands/gamma_commands.h"
#include "commands/picture_mode.h"
#include "proto/calc_rgbgamma.h"
#include "table.h"

namespace ctl {
namespace {

using quivord::colour::CurveText;
using quivord::colour::GammaSet;
namespace rgbgamma = ZEPH_MCUC::rgbgamma;

constexpr const char* kColours[] = {"red", "green", "blue"};

std::string Percent(std::uint16_t light) {
  char text[16];
  std::snprintf(text, sizeof text, "%.3f %%", 100.0 * light / ZEPH_MCUC::kFullLight);
  return text;
}

std::string SamplesText(const GammaSet& set) {
  constexpr std::size_t kCodes[] = {0, 64, 128, 256, 512, 1024, 1536, 2048, 2560, 3072, 3584, 4095};
  std::vector<std::vector<std::string>> rows = {{"input code", "red", "green", "blue"}};
  for (const std::size_t code : kCodes) {
    std::vector<std::string> row = {std::to_string(code)};
    for (const auto& table : set) row.push_back(Percent(ZEPH_MCUC::GammaEntry(table, code)));
    rows.push_back(std::move(row));
  }
  return Columns(rows);
}

nlohmann::json Entries(const ZEPH_MCUC::GammaTable& table) {
  nlohmann::json entries = nlohmann::json::array();
  for (std::size_t code = 0; code < ZEPH_MCUC::kGammaEntries; ++code) {
    entries.push_back(ZEPH_MCUC::GammaEntry(table, code));
  }
  return entries;
}

// What clients have stored beside their sets, where they have.
Answer ReadValues(Device& device, nlohmann::json* values) {
  for (const rgbgamma::Value& value : rgbgamma::kValues) {
    Answer answer = device.ReadBytes(value.reg, 1);
    if (!answer.done()) return answer;
    const char* const name = value.set == rgbgamma::Set::k12Bit ? "12" : "10";
    if (answer.data[0] != kNoExponent) (*values)[name] = answer.data[0] / 10.0;
  }
  return {};
}

std::string ValuesText(const nlohmann::json& values) {
  std::string text;
  for (const auto& [depth, exponent] : values.items()) {
    char line[64];
    std::snprintf(line, sizeof line, "\nstored with the %s-bit set: exponent %.1f", depth.c_str(),
                  exponent.get<double>());
    text += line;
  }
  return text;
}

Exit Show(Context& context) {
  Exit exit = Exit::kDone;
  const auto device = Device::Open(context, exit);
  if (device == nullptr) return exit;
  GammaSet set;
  PictureMode mode;
  nlohmann::json values = nlohmann::json::object();
  Answer answer = ReadGamma(*device, &set);
  if (answer.done()) answer = ReadMode(*device, &mode);
  if (answer.done()) answer = ReadValues(*device, &values);
  if (!answer.done()) return context.Fail(answer);
  nlohmann::json object = {{"mode", ModeName(mode.set.HDRType)}, {"exponents", values}};
  for (std::size_t i = 0; i < set.size(); ++i) {
    object[kColours[i]] = {{"curve", CurveText(set[i])}, {"entries", Entries(set[i])}};
  }
  context.out.Show(GammaText(set) + ValuesText(values) + "\n\n" + SamplesText(set), object);
  return Exit::kDone;
}

Run DeclareShow(CLI::App& /*app*/) { return Show; }

}  // namespace

Answer ReadGamma(Device& device, GammaSet* set) {
  for (const rgbgamma::Table& table : rgbgamma::TablesOf(rgbgamma::Set::k12Bit)) {
    auto& bytes = (*set)[static_cast<std::size_t>(table.colour)];
    for (std::uint32_t at = 0; at < bytes.size(); at += kGammaPiece) {
      Answer answer = device.ReadBytes(table.reg + at, kGammaPiece);
      if (!answer.done()) return answer;
      std::copy(answer.data.begin(), answer.data.end(), bytes.begin() + at);
    }
  }
  return {};
}

std::string GammaText(const GammaSet& set) {
  if (set[0] == set[1] && set[1] == set[2]) return "red, green and blue: " + CurveText(set[0]);
  std::string text;
  for (std::size_t i = 0; i < set.size(); ++i) {
    text += std::string(i == 0 ? "" : "\n") + kColours[i] + ": " + CurveText(set[i]);
  }
  return text;
}

const Command kGammaShow{
    "show",
    "Show the tables that the FPGA holds",
    "  quivordctl gamma show\n",
    DeclareShow,
};

}  // namespace ctl
