#include "edid/image.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <string_view>

namespace edid {
namespace {

constexpr std::size_t kBlock = 128;
constexpr std::size_t kDescriptor = 18;
constexpr std::size_t kText = 13;
constexpr std::size_t kExtensionTimings = 4;

constexpr std::uint16_t kProduct = 0xE45E;
constexpr std::uint32_t kSerial = 0x01010101;
constexpr std::uint8_t kWeek = 4;
constexpr std::uint8_t kYear = 0x1B;   // since 1990
constexpr std::uint8_t kGamma = 0x78;  // 2.2
constexpr std::uint8_t kColors[] = {0x31, 0x35, 0xA5, 0x55, 0x4E, 0xA1, 0x26, 0x0C, 0x50, 0x54};
constexpr std::uint8_t kEstablished[] = {0x25, 0x4F, 0x00};
// 1920 x 1080, 1680 x 1050, 1440 x 900, 1280 x 1024, 1280 x 960, 1280 x 720, each at 60 Hz
constexpr std::uint8_t kStandard[] = {0xD1, 0xC0, 0xB3, 0x00, 0x95, 0x00, 0x81, 0x80,
                                      0x81, 0x40, 0x81, 0xC0, 0x01, 0x01, 0x01, 0x01};

constexpr std::uint8_t kDigital = 0x80;
constexpr std::uint8_t kAnalog = 0x0E;  // 0.7 V; separate, composite and green sync
constexpr std::uint8_t kPreferredFirst = 0x02;
constexpr std::uint8_t kAnalogColor = 0x08;

// Tags of descriptors and of data blocks.
constexpr std::uint8_t kNameTag = 0xFC, kRangeTag = 0xFD, kDummyTag = 0x10;
constexpr unsigned kAudioBlock = 1, kVideoBlock = 2, kVendorBlock = 3, kExtendedBlock = 7;

// Appends to a block.
class Bytes {
 public:
  void Put(unsigned byte) { block_[at_++] = static_cast<std::uint8_t>(byte); }
  void Put16(unsigned value) {
    Put(value);
    Put(value >> 8);
  }
  template <class Range>
  void PutAll(const Range& range) {
    for (const auto byte : range) Put(static_cast<std::uint8_t>(byte));
  }
  void SkipTo(std::size_t at) { at_ = at; }
  std::size_t at() const { return at_; }
  std::uint8_t& operator[](std::size_t at) { return block_[at]; }

  // The block with its closing byte.
  std::array<std::uint8_t, kBlock> Close() {
    block_[kBlock - 1] =
        static_cast<std::uint8_t>(-std::accumulate(block_.begin(), block_.end() - 1, 0U));
    return block_;
  }

 private:
  std::array<std::uint8_t, kBlock> block_{};
  std::size_t at_ = 0;
};

void PutTiming(const Timing& t, Bytes* out) {
  const auto nibbles = [](unsigned high, unsigned low) { return (high >> 8) << 4 | low >> 8; };
  const auto bits = [](unsigned value, unsigned from) { return value >> from & 3U; };
  out->Put16(t.clock);
  out->Put(t.width);
  out->Put(t.h_blank);
  out->Put(nibbles(t.width, t.h_blank));
  out->Put(t.height);
  out->Put(t.v_blank);
  out->Put(nibbles(t.height, t.v_blank));
  out->Put(t.h_offset);
  out->Put(t.h_sync);
  out->Put((t.v_offset & 0x0FU) << 4 | (t.v_sync & 0x0FU));
  out->Put(bits(t.h_offset, 8) << 6 | bits(t.h_sync, 8) << 4 | bits(t.v_offset, 4) << 2 |
           bits(t.v_sync, 4));
  out->PutAll(std::array{0, 0, 0, 0, 0});  // no image size, no borders
  out->Put(0x18U | (t.v_positive ? 4U : 0U) | (t.h_positive ? 2U : 0U));
}

// A descriptor that is no timing: its tag, then what it says.
template <class Fill>
void PutTagged(std::uint8_t tag, Bytes* out, Fill fill) {
  const std::size_t end = out->at() + kDescriptor;
  out->PutAll(std::array{0, 0, 0, int{tag}, 0});
  fill();
  out->SkipTo(end);
}

void PutRange(const Range& range, std::uint8_t revision, Bytes* out) {
  PutTagged(kRangeTag, out, [&] {
    out->Put(range.least_v);
    out->Put(range.most_v);
    out->Put(range.least_h);
    out->Put(range.most_h);
    out->Put(range.most_clock / 10U);
    out->Put(revision < 4 ? 0 : 1);  // either way: no formula that gives timings
    out->PutAll(std::string_view("\n      "));
  });
}

void PutName(std::string_view name, Bytes* out) {
  PutTagged(kNameTag, out, [&] {
    std::string text(name.substr(0, kText));
    if (text.size() < kText) text += '\n';
    text.resize(kText, ' ');
    out->PutAll(text);
  });
}

unsigned InputDefinition(const Description& sink) {
  if (sink.link == Link::kVga) return kAnalog;
  if (sink.revision < 4) return kDigital;
  return kDigital | static_cast<unsigned>(sink.color_depth) << 4 |
         static_cast<unsigned>(sink.interface);
}

unsigned Features(const Description& sink) {
  if (sink.link == Link::kVga) return kPreferredFirst | kAnalogColor;
  if (sink.revision < 4) return kPreferredFirst;
  return kPreferredFirst | static_cast<unsigned>(sink.color_space) << 3;
}

std::array<std::uint8_t, kBlock> BaseBlock(const Description& sink, bool extended) {
  Bytes out;
  out.PutAll(std::array{0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0});
  const unsigned vendor = ('Z' - '@') << 10 | ('E' - '@') << 5 | ('P' - '@');
  out.Put(vendor >> 8);
  out.Put(vendor);
  out.Put16(kProduct);
  out.Put16(kSerial & 0xFFFF);
  out.Put16(kSerial >> 16);
  out.Put(kWeek);
  out.Put(kYear);
  out.Put(1);
  out.Put(sink.revision);
  out.Put(InputDefinition(sink));
  out.Put16(0);  // a wall has no size of its own
  out.Put(kGamma);
  out.Put(Features(sink));
  out.PutAll(kColors);
  out.PutAll(kEstablished);
  out.PutAll(kStandard);
  PutTiming(sink.timings.front(), &out);
  PutRange(sink.range, sink.revision, &out);
  PutName(sink.name, &out);
  PutTagged(kDummyTag, &out, [] {});
  out.Put(extended ? 1 : 0);
  return out.Close();
}

// --- The extension ------------------------------------------------------------------------------

template <class Range>
void PutDataBlock(unsigned tag, const Range& content, Bytes* out) {
  out->Put(tag << 5 | static_cast<unsigned>(std::size(content)));
  out->PutAll(content);
}

bool SpeaksHdmi(const Description& sink) {
  return sink.link == Link::kHdmi && (sink.interface == Typ_HDMI_a || sink.interface == Typ_HDMI_b);
}

void PutDataBlocks(const Description& sink, Bytes* out) {
  if (!sink.vics.empty()) PutDataBlock(kVideoBlock, sink.vics, out);
  if (SpeaksHdmi(sink)) {
    // Two channels of PCM at 32 to 48 kHz, 16 to 24 bits.
    PutDataBlock(kAudioBlock, std::array{0x09, 0x07, 0x07}, out);
    // HDMI Licensing's code, physical address 0.0.0.0
    PutDataBlock(kVendorBlock, std::array{0x03, 0x0C, 0x00, 0x00, 0x00}, out);
  }
  // Video capability: the quantization range of RGB can be chosen, nothing is overscanned.
  PutDataBlock(kExtendedBlock, std::array{0x00, 0x4A}, out);
}

std::array<std::uint8_t, kBlock> Extension(const Description& sink) {
  constexpr unsigned kOneNative = 1, kUnderscan = 0x80, kBasicAudio = 0x40, kYCbCr444 = 0x20,
                     kYCbCr422 = 0x10;
  Bytes out;
  out.Put(2);  // CEA-861
  out.Put(3);  // its revision
  out.SkipTo(4);
  PutDataBlocks(sink, &out);
  out[2] = static_cast<std::uint8_t>(out.at());
  const bool ycbcr444 = sink.color_space == RGB444YCbCr444 || sink.color_space == AllColSpa;
  const bool ycbcr422 = sink.color_space == RGB444YCbCr422 || sink.color_space == AllColSpa;
  out[3] =
      static_cast<std::uint8_t>(kOneNative | kUnderscan | (SpeaksHdmi(sink) ? kBasicAudio : 0) |
                                (ycbcr444 ? kYCbCr444 : 0) | (ycbcr422 ? kYCbCr422 : 0));
  const auto rest = sink.timings.subspan(1);
  for (const Timing& timing : rest.first(std::min(rest.size(), kExtensionTimings))) {
    PutTiming(timing, &out);
  }
  return out.Close();
}

}  // namespace

Image Write(const Description& sink) {
  Image image{};
  const bool extended = sink.link != Link::kVga;
  const auto base = BaseBlock(sink, extended);
  std::copy(base.begin(), base.end(), image.begin());
  if (!extended) return image;
  const auto extension = Extension(sink);
  std::copy(extension.begin(), extension.end(), image.begin() + kBlock);
  return image;
}

}  // namespace edid
