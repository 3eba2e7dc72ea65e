#include "colour/gammaset.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <vector>

namespace quivord::colour {
namespace {

using ZEPH_MCUC::GammaEntry;
using ZEPH_MCUC::GammaTable;
using ZEPH_MCUC::kGammaEntries;
using ZEPH_MCUC::kGammaTableSize;

constexpr std::size_t kFewLines = 1024;
constexpr const char* kColours[] = {"red", "green", "blue"};

using Line = std::vector<std::uint16_t>;

Error Wrong(const std::string& text) { return {Trouble::kWrongUse, text}; }

// The numbers of a line, or nothing where something else stands there.
std::optional<Line> ParseLine(std::string_view text) {
  constexpr std::string_view kBetween = " \t\r,;";
  text = text.substr(0, text.find('#'));
  Line numbers;
  while (true) {
    const std::size_t begin = text.find_first_not_of(kBetween);
    if (begin == std::string_view::npos) return numbers;
    text.remove_prefix(begin);
    std::uint16_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    if (!text.empty() && kBetween.find(text.front()) == std::string_view::npos) {
      return std::nullopt;
    }
    numbers.push_back(number);
  }
}

// The lines that hold numbers, all of them one, or all of them three.
Result<std::vector<Line>> ParseLines(std::string_view text) {
  std::vector<Line> lines;
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const auto line = ParseLine(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.has_value() && line->empty()) continue;
    const bool right = line.has_value() && (line->size() == 1 || line->size() == 3) &&
                       (lines.empty() || lines[0].size() == line->size());
    if (!right) {
      return Wrong("line " + std::to_string(number) +
                   " isn't one number from 0 to 65535, or three on each line");
    }
    lines.push_back(*line);
    if (lines.size() > kGammaEntries) break;
  }
  if (lines.size() == kGammaEntries || lines.size() == kFewLines) return lines;
  return Wrong("a gamma file has 4096 or 1024 lines of numbers");
}

GammaSet SetOf(const std::vector<Line>& lines) {
  const std::size_t codes = kGammaEntries / lines.size();
  GammaSet set;
  for (std::size_t code = 0; code < kGammaEntries; ++code) {
    const Line& line = lines[code / codes];
    for (std::size_t colour = 0; colour < set.size(); ++colour) {
      ZEPH_MCUC::SetGammaEntry(&set[colour], code, line[line.size() == 1 ? 0 : colour]);
    }
  }
  return set;
}

GammaSet SetOf(std::string_view bytes) {
  GammaSet set;
  for (std::size_t colour = 0; colour < set.size(); ++colour) {
    const std::size_t from = bytes.size() == kGammaTableSize ? 0 : colour * kGammaTableSize;
    std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(from), kGammaTableSize,
                set[colour].begin());
  }
  return set;
}

bool IsText(std::string_view bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](char c) {
    return (c >= ' ' && c <= '~') || c == '\n' || c == '\r' || c == '\t';
  });
}

Result<GammaSet> Checked(GammaSet set) {
  for (std::size_t colour = 0; colour < set.size(); ++colour) {
    for (std::size_t code = 1; code < kGammaEntries; ++code) {
      if (GammaEntry(set[colour], code) >= GammaEntry(set[colour], code - 1)) continue;
      return Wrong(std::string("the ") + kColours[colour] + " table falls at input code " +
                   std::to_string(code));
    }
  }
  return set;
}

// The exponent of the power curve that `table` is, or nothing where it is none.
std::optional<double> PowerOf(const GammaTable& table) {
  constexpr double kTolerance = 0.004;  // of full light: what steps of 10 bits make
  const auto light = [&table](std::size_t code) { return GammaEntry(table, code) / 65535.0; };
  constexpr std::size_t kHalf = kGammaEntries / 2;
  if (light(kHalf) <= 0 || light(kHalf) >= 1) return std::nullopt;
  const double exponent = std::log(light(kHalf)) / std::log(0.5);
  for (std::size_t code = 0; code < kGammaEntries; code += 16) {
    const double power = std::pow(static_cast<double>(code) / (kGammaEntries - 1), exponent);
    if (std::abs(power - light(code)) > kTolerance) return std::nullopt;
  }
  return exponent;
}

std::optional<int> HlgClassOf(const GammaTable& table) {
  for (std::uint8_t hlg_class = 0; hlg_class <= ZEPH_MCUC::curves::kHlgLastClass; ++hlg_class) {
    const auto& reference = ZEPH_MCUC::HLGTempTableMode(hlg_class);
    bool same = true;
    for (std::size_t i = 0; i < reference.size() && same; ++i) {
      same = GammaEntry(table, 4 * i) == reference[i];
    }
    if (same) return hlg_class;
  }
  return std::nullopt;
}

}  // namespace

Result<GammaSet> ParseGamma(std::string_view bytes) {
  const bool sized = bytes.size() == kGammaTableSize || bytes.size() == 3 * kGammaTableSize;
  if (sized && !IsText(bytes)) return Checked(SetOf(bytes));
  const auto lines = ParseLines(bytes);
  if (!lines) return lines.error();
  return Checked(SetOf(lines.value()));
}

std::string CurveText(const GammaTable& table) {
  if (table == ZEPH_MCUC::GammaTable_x()) return "the built-in default";
  if (GammaEntry(table, kGammaEntries - 1) == 0) return "dark";
  if (const auto hlg_class = HlgClassOf(table)) {
    return "HLG of class " + std::to_string(*hlg_class);
  }
  if (const auto exponent = PowerOf(table)) {
    char text[32];
    std::snprintf(text, sizeof text, "a power of %.2f", *exponent);
    return text;
  }
  return "a curve of its own";
}

}  // namespace quivord::colour
