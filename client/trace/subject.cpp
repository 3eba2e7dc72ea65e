#include "trace/subject.h"

#include <cstdio>

#include "proto/calc_feature.h"
#include "proto/calc_feature_words.h"
#include "proto/registerspace_names.h"

namespace quivord::trace {
namespace {

using namespace ZEPH_MCUC;

constexpr std::size_t kFewShown = 8;  // bytes that stand in a line as they are

std::string AddressText(std::uint32_t address) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08X", address);
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

const FeatureRegister* FeatureAt(std::uint32_t address) {
  constexpr std::uint32_t kCells = 0xF0000000;
  for (const std::uint32_t base : {feature::kBase, kCells}) {
    const std::uint32_t offset = address - base;
    if (address < base || offset >= feature::kSize) continue;
    const FeatureRegister* cell = FindFeatureAt(FeaturePlace::kCell, offset);
    const FeatureRegister* image = FindFeatureAt(FeaturePlace::kImage, offset);
    return base == kCells || image == nullptr ? cell : image;
  }
  return nullptr;
}

std::string SpaceText(std::uint32_t address) {
  const SpaceNames* space = FindSpace(address);
  const RowNames* row = space == nullptr ? nullptr : FindRow(*space, address);
  return row == nullptr || row->cmdExp == nullptr ? "" : row->cmdExp;
}

// The same without the address in front of a feature's name, which says as much.
std::string ShortPlace(const FrameHead& head) {
  const FeatureRegister* named = FeatureOf(head);
  return named != nullptr ? named->name.text : PlaceText(head);
}

std::string FeatureValue(const FrameHead& head, std::span<const std::uint8_t> data) {
  const FeatureRegister* row = FeatureOf(head);
  if (row == nullptr || row->width != data.size()) return "";
  const bool whole = (head.registerAddress & (feature::kSize - 1)) == row->offset;
  return whole ? FeatureText(*row, data) : "";
}

}  // namespace

const FeatureRegister* FeatureOf(const FrameHead& head) {
  return head.deviceType == JSHL_TypeSender ? FeatureAt(head.registerAddress) : nullptr;
}

std::string RegisterName(std::uint32_t address) {
  const FeatureRegister* named = FeatureAt(address);
  return named != nullptr ? named->name.text : SpaceText(address);
}

std::string PlaceText(const FrameHead& head) {
  const std::string address = AddressText(head.registerAddress);
  if (head.deviceType != JSHL_TypeSender) return address;
  const std::string name = RegisterName(head.registerAddress);
  return name.empty() ? address : address + " " + name;
}

std::string SubjectText(const FrameHead& head, std::span<const std::uint8_t> data) {
  const std::string text = TargetText(head) + ShortPlace(head);
  if (data.empty()) return text;
  const std::string value = FeatureValue(head, data);
  if (!value.empty()) return text + " = " + value;
  if (data.size() <= kFewShown && data.size() == head.dataLength) {
    return text + " =" + HexWords(data);
  }
  return text + ", " + std::to_string(head.dataLength) + " bytes";
}

std::string PeerText(std::uint32_t peer) {
  constexpr std::uint32_t kNumber = 0xFFFFFF;
  switch (peer & kNumber) {
    case task::kOwd:
      return "owd";
    case task::kKye:
      return "kye";
    case task::kMoirad:
      return "moirad";
    default:
      char text[16];
      std::snprintf(text, sizeof text, "0x%06X", peer & kNumber);
      return text;
  }
}

std::string HexWords(std::span<const std::uint8_t> bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    char digits[4];
    std::snprintf(digits, sizeof digits, " %02x", byte);
    text += digits;
  }
  return text;
}

}  // namespace quivord::trace
