#include "commands/feature_value.h"

#include <charconv>
#include <optional>

#include "numbers.h"
#include "process/calc_time.h"
#include "proto/calc_feature_words.h"

namespace ctl {
namespace {

using namespace ZEPH_MCUC;
using Bytes = std::vector<std::uint8_t>;

Bytes LittleEndian(std::uint32_t number, std::uint32_t width) {
  Bytes bytes;
  for (std::uint32_t i = 0; i < width; ++i) {
    bytes.push_back(static_cast<std::uint8_t>(number >> (8 * i)));
  }
  return bytes;
}

Parsed Same(Bytes bytes) { return {bytes, bytes, ""}; }

Parsed ParseNumberOf(const FeatureRegister& row, std::string_view word) {
  const auto number = ParseNumber(word, row.most);
  if (!number.has_value() || *number < row.least) return {};
  return Same(LittleEndian(static_cast<std::uint32_t>(*number), row.width));
}

Parsed ParseChoice(const FeatureRegister& row, std::string_view word) {
  for (const FeatureChoice& choice : row.choices) {
    if (choice.word != word || choice.written == FeatureChoice::kNever) continue;
    const bool same = choice.written == FeatureChoice::kAsShown;
    return {{same ? choice.shown : static_cast<std::uint8_t>(choice.written)}, {choice.shown}, ""};
  }
  return {};
}

std::optional<std::int32_t> ParseSigned(std::string_view word) {
  std::int32_t value = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
  const bool whole = error == std::errc() && end == word.data() + word.size();
  return whole ? std::optional(value) : std::nullopt;
}

Parsed ParseOffsets(std::string_view word) {
  const auto comma = word.find(',');
  if (comma == std::string_view::npos) return {};
  const auto x = ParseSigned(word.substr(0, comma));
  const auto y = ParseSigned(word.substr(comma + 1));
  if (!x.has_value() || !y.has_value()) return {};
  Bytes bytes = LittleEndian(static_cast<std::uint32_t>(*x), 4);
  const Bytes second = LittleEndian(static_cast<std::uint32_t>(*y), 4);
  bytes.insert(bytes.end(), second.begin(), second.end());
  return Same(std::move(bytes));
}

Parsed ParseBytesOf(const FeatureRegister& row, std::string_view word) {
  auto bytes = ParseBytes({std::string(word)});
  return bytes.has_value() && bytes->size() == row.width ? Same(std::move(*bytes)) : Parsed{};
}

Parsed ParseForm(const FeatureRegister& row, std::string_view word) {
  switch (row.form) {
    case FeatureForm::kNumber:
      return ParseNumberOf(row, word);
    case FeatureForm::kChoice:
      return ParseChoice(row, word);
    case FeatureForm::kBytes:
      return ParseBytesOf(row, word);
    case FeatureForm::kTime:
      return Same(ParseTime(word));
    case FeatureForm::kOffsets:
      return ParseOffsets(word);
    case FeatureForm::kPortBits:
      break;
  }
  return {};
}

// Two digits at `at`, as BCD.
std::optional<std::uint8_t> TwoDigits(std::string_view word, std::size_t at) {
  const auto digit = [&](std::size_t i) { return word[i] >= '0' && word[i] <= '9'; };
  if (at + 2 > word.size() || !digit(at) || !digit(at + 1)) return std::nullopt;
  return static_cast<std::uint8_t>((word[at] - '0') << 4 | (word[at + 1] - '0'));
}

}  // namespace

Parsed ParseFeature(const FeatureRegister& row, std::string_view word) {
  Parsed parsed = ParseForm(row, word);
  if (!parsed.bytes.empty()) return parsed;
  parsed.fault = "'" + std::string(word) + "' is no value of " +
                 std::string(std::string_view(row.name)) + ", which takes " + FeatureRange(row);
  return parsed;
}

std::vector<std::uint8_t> ParseTime(std::string_view word) {
  constexpr std::string_view kShape = "2000-00-00 00:00:00";
  constexpr std::size_t kWithoutSeconds = 16;
  std::string text(word);
  if (text.size() == kWithoutSeconds) text += ":00";
  if (text.size() != kShape.size() || !text.starts_with("20")) return {};
  if (text[10] == 'T') text[10] = ' ';
  Bytes bytes;
  for (std::size_t at = 2; at < kShape.size(); at += 3) {
    const auto value = TwoDigits(text, at);
    const bool parted = at == 2 || text[at - 1] == kShape[at - 1];
    if (!value.has_value() || !parted) return {};
    bytes.push_back(*value);
  }
  return IsTime(std::span<const std::uint8_t, 6>(bytes)) ? bytes : Bytes{};
}

std::chrono::sys_seconds TimePoint(std::span<const std::uint8_t> bcd) {
  using namespace std::chrono;
  if (bcd.size() != 6 || !IsTime(bcd.first<6>())) return {};
  const sys_days day = year(2000 + FromBcd(bcd[0])) / FromBcd(bcd[1]) / FromBcd(bcd[2]);
  return day + hours(FromBcd(bcd[3])) + minutes(FromBcd(bcd[4])) + seconds(FromBcd(bcd[5]));
}

std::string ValueText(const FeatureRegister& row, std::span<const std::uint8_t> bytes) {
  const std::string text = FeatureText(row, bytes);
  return *row.unit == '\0' ? text : text + " " + row.unit;
}

nlohmann::json ValueJson(const FeatureRegister& row, std::span<const std::uint8_t> bytes) {
  switch (row.form) {
    case FeatureForm::kNumber:
      return FeatureNumber(bytes);
    case FeatureForm::kPortBits:
      return FeaturePorts(row, bytes);
    case FeatureForm::kOffsets: {
      const FeatureOffsets offsets = ReadFeatureOffsets(bytes);
      return {offsets.x, offsets.y};
    }
    default:
      return FeatureText(row, bytes);
  }
}

}  // namespace ctl
