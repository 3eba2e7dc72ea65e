#include "live/busline.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

#include "board/text.h"
#include "proto/calc_feature.h"
#include "proto/calc_feature_words.h"
#include "proto/registerspace_names.h"

namespace quivord::live {
namespace {

using namespace ZEPH_MCUC;

constexpr std::size_t kHeadAndSum = frame::kShortest;
constexpr std::size_t kFewShown = 8;  // bytes that stand in a line as they are

template <class Number>
std::optional<Number> Parse(std::string_view text, int base) {
  Number number{};
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  if (fault != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

std::vector<std::uint8_t> Bytes(std::string_view hex) {
  std::vector<std::uint8_t> bytes;
  for (; hex.size() >= 2; hex.remove_prefix(2)) {
    const auto byte = Parse<std::uint8_t>(hex.substr(0, 2), 16);
    if (!byte.has_value()) break;
    bytes.push_back(*byte);
  }
  return bytes;
}

std::string AddressText(std::uint32_t address) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08X", address);
  return text;
}

std::string HexText(std::span<const std::uint8_t> bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    char digits[4];
    std::snprintf(digits, sizeof digits, " %02x", byte);
    text += digits;
  }
  return text;
}

std::string TargetText(const FrameHead& head) {
  constexpr const char* kDevices[] = {"", "card", "multi-function card", "distribution box",
                                      "3D launcher"};
  if (head.deviceType == JSHL_TypeSender) return "";
  std::string text = head.deviceType < std::size(kDevices) ? kDevices[head.deviceType] : "device";
  constexpr std::uint16_t kAllBoards = 0xFFFF;
  constexpr std::uint8_t kAllPorts = 0xFF;
  text = head.boardAddress == kAllBoards ? "every " + text
                                         : text + " " + std::to_string(head.boardAddress);
  return text + (head.portAddress == kAllPorts
                     ? " of all ports: "
                     : " of port " + std::to_string(head.portAddress) + ": ");
}

// The feature register, or the FPGA cell by the same name, that an address of the sending card
// means; null for any other.
const FeatureRegister* FeatureOf(const FrameHead& head) {
  constexpr std::uint32_t kCells = 0xF0000000;
  if (head.deviceType != JSHL_TypeSender) return nullptr;
  for (const std::uint32_t base : {feature::kBase, kCells}) {
    const std::uint32_t offset = head.registerAddress - base;
    if (head.registerAddress < base || offset >= feature::kSize) continue;
    const FeatureRegister* cell = FindFeatureAt(FeaturePlace::kCell, offset);
    const FeatureRegister* image = FindFeatureAt(FeaturePlace::kImage, offset);
    return base == kCells || image == nullptr ? cell : image;
  }
  return nullptr;
}

// Words for a register of the sending card: a feature's name, or what its space calls it.
std::string RegisterText(const FrameHead& head) {
  const FeatureRegister* named = FeatureOf(head);
  if (named != nullptr) return named->name.text;
  const std::uint32_t address = head.registerAddress;
  const SpaceNames* space = FindSpace(address);
  const RowNames* row = space == nullptr ? nullptr : FindRow(*space, address);
  const char* name = row != nullptr ? row->cmdExp : nullptr;
  return AddressText(address) + (name == nullptr || *name == '\0' ? "" : std::string(" ") + name);
}

std::string FeatureValue(const FrameHead& head, std::span<const std::uint8_t> data) {
  const FeatureRegister* row = FeatureOf(head);
  if (row == nullptr || row->width != data.size()) return "";
  const bool whole = (head.registerAddress & (feature::kSize - 1)) == row->offset;
  return whole ? FeatureText(*row, data) : "";
}

}  // namespace

std::optional<BusLine> ReadBusLine(std::string_view line) {
  const auto word = [&line] { return board::TakeUntil(line, ' '); };
  const auto at = Parse<std::int64_t>(word(), 10);
  if (!at.has_value() || word() != "bus") return std::nullopt;
  const std::string_view way = word();
  std::string_view peer = word();
  word();  // the length: what stands behind it is measured
  if ((way != ">" && way != "<") || !peer.starts_with("0x")) return std::nullopt;
  peer.remove_prefix(2);
  const auto id = Parse<std::uint32_t>(peer, 16);
  const auto bytes = Bytes(line);
  const auto head = ReadFrameHead(bytes);
  if (!id.has_value() || !head.has_value()) return std::nullopt;
  BusLine read{*at, way == ">", *id, *head, {}};
  const std::size_t data = std::min<std::size_t>(bytes.size() - kHeadAndSum, head->dataLength);
  const auto begin = bytes.begin() + frame::kData;
  read.data.assign(begin, begin + static_cast<std::ptrdiff_t>(data));
  return read;
}

std::string SubjectText(const FrameHead& head, std::span<const std::uint8_t> data) {
  const bool ours = head.deviceType == JSHL_TypeSender;
  std::string text =
      TargetText(head) + (ours ? RegisterText(head) : AddressText(head.registerAddress));
  if (data.empty()) return text;
  const std::string value = FeatureValue(head, data);
  if (!value.empty()) return text + " = " + value;
  if (data.size() <= kFewShown && data.size() == head.dataLength)
    return text + " =" + HexText(data);
  return text + ", " + std::to_string(head.dataLength) + " bytes";
}

}  // namespace quivord::live
