#include "video/edid_facts.h"

#include <algorithm>

namespace quivord::video {
namespace {

using namespace ZEPH_MCUC;
using View = std::span<const uint8_t>;

constexpr std::size_t kStandardAt = 38;
constexpr std::size_t kStandards = 8;
constexpr std::size_t kDescriptors = 4;
constexpr uint8_t kCea = 2;

// Tags of descriptors without a timing, and of data blocks.
constexpr uint8_t kNameTag = 0xFC, kRangeTag = 0xFD;
constexpr unsigned kVideoBlock = 2, kVendorBlock = 3;

unsigned Word(View bytes, std::size_t at) {
  return bytes[at] | static_cast<unsigned>(bytes[at + 1]) << 8;
}

std::string Manufacturer(View bytes) {
  const unsigned code = static_cast<unsigned>(bytes[8]) << 8 | bytes[9];
  std::string letters;
  for (int shift = 10; shift >= 0; shift -= 5) {
    const unsigned letter = code >> shift & 0x1F;
    letters += letter >= 1 && letter <= 26 ? static_cast<char>('@' + letter) : '?';
  }
  return letters;
}

std::string Input(View bytes) {
  const uint8_t definition = bytes[20];
  if ((definition & 0x80) == 0) return "analog";
  if (bytes[19] < 4) return "digital";
  static constexpr const char* kLinks[] = {"", " DVI", " HDMI", " HDMI", " MDDI", " DisplayPort"};
  const unsigned link = definition & 0x0F, depth = definition >> 4 & 7;
  std::string text = "digital";
  if (link < std::size(kLinks)) text += kLinks[link];
  if (depth >= 1 && depth <= 6) text += ", " + std::to_string(4 + 2 * depth) + " bits a colour";
  return text;
}

std::string NameText(View descriptor) {
  std::string text;
  for (const uint8_t byte : descriptor.subspan(5)) {
    if (byte == '\n') break;
    text += byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : '?';
  }
  return text;
}

RateRange Range(View d) {
  // From revision 4 on, flags add 255 to what a byte holds.
  const auto with = [&](std::size_t at, unsigned flag) {
    return d[at] + ((d[4] & flag) ? 255U : 0U);
  };
  return {with(5, 1), with(6, 2), with(7, 4), with(8, 8), d[9] * 10U};
}

void ReadDescriptor(View descriptor, EdidFacts& facts) {
  if (Word(descriptor, 0) != 0) {
    facts.timings.push_back(DecodeDescriptor(descriptor.first<kDescriptorSize>()));
  } else if (descriptor[3] == kNameTag) {
    facts.name = NameText(descriptor);
  } else if (descriptor[3] == kRangeTag) {
    facts.range = Range(descriptor);
  }
}

void ReadStandard(View pair, EdidFacts& facts) {
  if (pair[0] == 1 && pair[1] == 1) return;  // unused
  static constexpr unsigned kShapes[4][2] = {{16, 10}, {4, 3}, {5, 4}, {16, 9}};
  const auto& shape = kShapes[pair[1] >> 6];
  const unsigned width = (pair[0] + 31U) * 8;
  const unsigned rate_Hz = (pair[1] & 0x3FU) + 60;
  facts.standard.push_back({static_cast<uint16_t>(width),
                            static_cast<uint16_t>(width * shape[1] / shape[0]),
                            static_cast<uint16_t>(rate_Hz * 100)});
}

void ReadDataBlocks(View blocks, EdidFacts& facts) {
  while (!blocks.empty()) {
    const unsigned tag = blocks[0] >> 5;
    const std::size_t length = std::min<std::size_t>(blocks[0] & 0x1F, blocks.size() - 1);
    const View content = blocks.subspan(1, length);
    if (tag == kVideoBlock) {
      // The top bit marks one of the first 64 as native.
      for (const uint8_t code : content) {
        facts.vics.push_back(code >= 129 && code <= 192 ? code & 0x7F : code);
      }
    }
    const bool licensing =
        length >= 3 && content[0] == 0x03 && content[1] == 0x0C && content[2] == 0;
    if (tag == kVendorBlock && licensing) facts.hdmi = true;
    blocks = blocks.subspan(1 + length);
  }
}

void ReadExtension(View block, EdidFacts& facts) {
  if (block[0] != kCea) return;
  facts.extension = true;
  facts.basic_audio = (block[3] & 0x40) != 0;
  std::size_t at = std::min<std::size_t>(block[2], edid::kSum);
  if (at > 4) ReadDataBlocks(block.subspan(4, at - 4), facts);
  if (at < 4) return;  // no timings
  for (; at + kDescriptorSize <= edid::kSum && Word(block, at) != 0; at += kDescriptorSize) {
    ReadDescriptor(block.subspan(at, kDescriptorSize), facts);
  }
}

}  // namespace

std::optional<EdidFacts> ReadEdid(View bytes) {
  if (bytes.size() != edid::kBlock && bytes.size() != edid::kSize) return std::nullopt;
  EdidFacts facts;
  facts.header = std::equal(edid::kHeader.begin(), edid::kHeader.end(), bytes.begin());
  for (std::size_t at = 0; at < bytes.size(); at += edid::kBlock) {
    const auto block = bytes.subspan(at).first<edid::kBlock>();
    facts.sums.push_back(BlockSum(block) == block[edid::kSum]);
    if (block[edid::kExtensions] == 0) break;
  }
  facts.manufacturer = Manufacturer(bytes);
  facts.product = Word(bytes, 10);
  facts.serial = Word(bytes, 12) | static_cast<uint32_t>(Word(bytes, 14)) << 16;
  facts.week = bytes[16];
  facts.year = 1990U + bytes[17];
  facts.version = std::to_string(bytes[18]) + "." + std::to_string(bytes[19]);
  facts.input = Input(bytes);
  for (std::size_t i = 0; i < kStandards; ++i) {
    ReadStandard(bytes.subspan(kStandardAt + 2 * i, 2), facts);
  }
  for (std::size_t i = 0; i < kDescriptors; ++i) {
    ReadDescriptor(bytes.subspan(edid::kPreferred + i * kDescriptorSize, kDescriptorSize), facts);
  }
  if (facts.sums.size() > 1) ReadExtension(bytes.subspan(edid::kBlock), facts);
  return facts;
}

std::string FaultText(const EdidFacts& facts) {
  if (!facts.header) return "it doesn't begin as an EDID does";
  for (std::size_t i = 0; i < facts.sums.size(); ++i) {
    if (!facts.sums[i]) return "the checksum of block " + std::to_string(i) + " is wrong";
  }
  return "";
}

}  // namespace quivord::video
