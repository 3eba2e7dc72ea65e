#include "proto/calc_feature_words.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>

#include "process/calc_time.h"
#include "proto/calc_feature.h"
#include "proto/report_names.h"

namespace ZEPH_MCUC {
namespace {

constexpr std::size_t kTimeBytes = 6;

__attribute__((format(printf, 1, 2))) std::string Text(const char* format, ...) {
  char text[96];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  return text;
}

// "0x05 0xff".
std::string BytesText(std::span<const uint8_t> bytes) {
  std::string text;
  for (const uint8_t byte : bytes) text += Text(text.empty() ? "0x%02x" : " 0x%02x", byte);
  return text;
}

std::string ChoiceText(const FeatureRegister& row, uint8_t value) {
  const auto choice = std::find_if(row.choices.begin(), row.choices.end(),
                                   [=](const FeatureChoice& c) { return c.shown == value; });
  return choice == row.choices.end() ? Text("0x%02x", value) : choice->word;
}

std::string PortsText(const std::vector<int>& ports) {
  std::string text;
  for (const int port : ports) text += (text.empty() ? "" : " ") + std::to_string(port);
  return text.empty() ? "none" : text;
}

int PortAt(const FeatureRegister& row, uint32_t byte) {
  return row.portBits.firstPort + static_cast<int>(byte) * row.portBits.portsInByte;
}

// "ports with a copper link, of 0 to 3: 0 1".
std::string PortReport(const FeatureRegister& row, std::span<const uint8_t> bytes,
                       uint32_t skipped) {
  const auto end = skipped + static_cast<uint32_t>(bytes.size());
  return Text("%s, of %d to %d: ", row.meaning, PortAt(row, skipped), PortAt(row, end) - 1) +
         PortsText(FeaturePorts(row, bytes, skipped));
}

// The part of a status report that concerns one register.
std::string RegisterReport(const FeatureRegister& row, std::span<const uint8_t> bytes,
                           uint32_t skipped) {
  if (row.form == FeatureForm::kPortBits) return PortReport(row, bytes, skipped);
  const std::string name(std::string_view(row.name));
  if (bytes.size() != row.width) {
    return Text("%s, byte %u: ", name.c_str(), skipped) + BytesText(bytes);
  }
  const char* space = *row.unit == '\0' ? "" : " ";
  return name + " " + FeatureText(row, bytes) + space + row.unit;
}

// Status is reported under the number of its cell; what clients write and the daemon passes on lies
// where no cell has a name.
const FeatureRegister* FindReported(uint32_t offset) {
  const FeatureRegister* cell = FindFeatureAt(FeaturePlace::kCell, offset);
  return cell != nullptr ? cell : FindFeatureAt(FeaturePlace::kImage, offset);
}

std::string FeatureReport(uint32_t offset, std::span<const uint8_t> data) {
  std::string text;
  while (!data.empty()) {
    const FeatureRegister* row = FindReported(offset);
    if (row == nullptr) return "";
    const uint32_t skipped = offset - row->offset;
    const auto length = std::min<std::size_t>(row->width - skipped, data.size());
    text += (text.empty() ? "" : ", ") + RegisterReport(*row, data.first(length), skipped);
    data = data.subspan(length);
    offset += static_cast<uint32_t>(length);
  }
  return text;
}

std::string NamedReport(const ReportName& row, std::span<const uint8_t> data) {
  switch (row.form) {
    case ReportForm::kMark:
      return row.meaning;
    case ReportForm::kNumber:
      return Text("%s %u", row.meaning, data[0]);
    case ReportForm::kSize:
      break;
  }
  return Text("%s: %u x %u px", row.meaning, FeatureNumber(data.first(2)),
              FeatureNumber(data.subspan(2)));
}

}  // namespace

std::string FeatureText(const FeatureRegister& row, std::span<const uint8_t> bytes) {
  if (bytes.size() != row.width) return "";
  switch (row.form) {
    case FeatureForm::kNumber:
      return std::to_string(FeatureNumber(bytes));
    case FeatureForm::kChoice:
      return ChoiceText(row, bytes[0]);
    case FeatureForm::kBytes:
      return BytesText(bytes);
    case FeatureForm::kPortBits:
      return PortsText(FeaturePorts(row, bytes));
    case FeatureForm::kTime:
      return TimeText(bytes);
    case FeatureForm::kOffsets:
      break;
  }
  const FeatureOffsets offsets = ReadFeatureOffsets(bytes);
  return Text("%d,%d", offsets.x, offsets.y);
}

uint32_t FeatureNumber(std::span<const uint8_t> bytes) {
  uint32_t number = 0;
  for (std::size_t i = 0; i < bytes.size() && i < sizeof number; ++i) {
    number |= uint32_t{bytes[i]} << (8 * i);
  }
  return number;
}

FeatureOffsets ReadFeatureOffsets(std::span<const uint8_t> bytes) {
  if (bytes.size() < 8) return {};
  return {static_cast<int32_t>(FeatureNumber(bytes.first(4))),
          static_cast<int32_t>(FeatureNumber(bytes.subspan(4, 4)))};
}

std::vector<int> FeaturePorts(const FeatureRegister& row, std::span<const uint8_t> bytes,
                              uint32_t skipped) {
  const FeaturePortBits& bits = row.portBits;
  std::vector<int> ports;
  for (uint32_t byte = 0; byte < bytes.size(); ++byte) {
    for (int i = 0; i < bits.portsInByte; ++i) {
      const int bit = (i + 1) * bits.bitsOfPort - 1;
      if ((bytes[byte] >> bit & 1) != 0) ports.push_back(PortAt(row, skipped + byte) + i);
    }
  }
  return ports;
}

std::string FeatureRange(const FeatureRegister& row) {
  switch (row.form) {
    case FeatureForm::kNumber:
      return Text("%u to %u%s%s", row.least, row.most, *row.unit == '\0' ? "" : " ", row.unit);
    case FeatureForm::kBytes:
      return row.width == 1 ? "a byte, as 0x20" : Text("%u bytes, as 0x20", row.width);
    case FeatureForm::kPortBits:
      return Text("ports %d to %d", PortAt(row, 0), PortAt(row, row.width) - 1);
    case FeatureForm::kTime:
      return "2000-01-01 00:00:00 to 2099-12-31 23:59:59";
    case FeatureForm::kOffsets:
      return "x,y with a sign, as -50,20";
    case FeatureForm::kChoice:
      break;
  }
  std::string text;
  for (const FeatureChoice& choice : row.choices) {
    text.append(text.empty() ? "" : ", ").append(choice.word);
    if (choice.written == FeatureChoice::kNever) text += " (shown only)";
  }
  return text;
}

std::string TimeText(std::span<const uint8_t> bcd) {
  if (bcd.size() != kTimeBytes || !IsTime(bcd.first<kTimeBytes>())) return BytesText(bcd);
  return Text("20%02x-%02x-%02x %02x:%02x:%02x", bcd[0], bcd[1], bcd[2], bcd[3], bcd[4], bcd[5]);
}

std::string ReportText(uint32_t address, std::span<const uint8_t> data) {
  for (const ReportName& row : ReportNames()) {
    if (row.address == address && row.length == data.size()) return NamedReport(row, data);
  }
  const bool feature = address >= feature::kBase && address - feature::kBase < feature::kSize;
  return feature ? FeatureReport(address - feature::kBase, data) : "";
}

}  // namespace ZEPH_MCUC
