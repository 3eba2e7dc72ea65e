#include "proto/calc_hc.h"

#include <algorithm>

#include "stub/mcucmessagestruct_layout.h"

namespace ZEPH_MCUC::hc {
namespace {

// Where the fields of a mode change stand; the byte behind the brightness is 0.
enum HDRField : std::size_t {
  kTypeAt = 0,
  kClassAt = 1,
  kBrightnessAt = 2,
  kPeakAt = 4,
  kAmbientAt = 6,
  kMinLumAt = 8,
  kDeltaAt = 9,
};

template <std::size_t N>
std::array<uint8_t, N> Padded(std::span<const uint8_t> bytes) {
  std::array<uint8_t, N> padded{};
  std::copy_n(bytes.begin(), std::min(bytes.size(), N), padded.begin());
  return padded;
}

bool IsModeParameter(uint32_t offset) {
  return offset == kHDRType || offset == kPeakLight || offset == kAmbientLight ||
         offset == kHLGClass || offset == kMinLum;
}

Work TakeMode(uint32_t offset, std::span<const uint8_t> data, HDRParaData* hdr) {
  const auto bytes = Padded<2>(data);
  if (offset == kHDRType) hdr->HDRType = bytes[0];
  if (hdr->HDRType != kHDR10) {
    if (offset == kHLGClass) hdr->HLGCalss = bytes[0];
    return Work::kLoadHLG;
  }
  if (offset == kPeakLight) hdr->fScreenPeakLight = DWQ_DECWD(&bytes[0]);
  if (offset == kAmbientLight) hdr->fambientLight = bytes[0];
  if (offset == kMinLum) hdr->pMinLum = bytes[0];
  return Work::kLoadHDR10;
}

}  // namespace

std::array<uint8_t, kHDRParaSize> Encode(const HDRParaData& record) {
  std::array<uint8_t, kHDRParaSize> bytes{};
  bytes[kTypeAt] = record.HDRType;
  bytes[kClassAt] = record.HLGCalss;
  bytes[kBrightnessAt] = record.brightness;
  DWQ_ENCWD(&bytes[kPeakAt], record.fScreenPeakLight);
  DWQ_ENCWD(&bytes[kAmbientAt], record.fambientLight);
  bytes[kMinLumAt] = record.pMinLum;
  bytes[kDeltaAt] = record.pdelta;
  return bytes;
}

HDRParaData DecodeHDR(std::span<const uint8_t> bytes) {
  const auto record = Padded<kHDRParaSize>(bytes);
  return {.HDRType = record[kTypeAt],
          .HLGCalss = record[kClassAt],
          .brightness = record[kBrightnessAt],
          .fScreenPeakLight = DWQ_DECWD(&record[kPeakAt]),
          .fambientLight = DWQ_DECWD(&record[kAmbientAt]),
          .pMinLum = record[kMinLumAt],
          .pdelta = record[kDeltaAt]};
}

std::array<uint8_t, kCSCParaSize> Encode(const CSCParaData& record) {
  std::array<uint8_t, kCSCParaSize> bytes{};
  DWQ_ENCWD(&bytes[0], record.Saturation);
  DWQ_ENCWD(&bytes[2], record.Contrast);
  DWQ_ENCWD(&bytes[4], record.Hue);
  return bytes;
}

CSCParaData DecodeCSC(std::span<const uint8_t> bytes) {
  const auto record = Padded<kCSCParaSize>(bytes);
  return {.Saturation = DWQ_DECWD(&record[0]),
          .Contrast = DWQ_DECWD(&record[2]),
          .Hue = DWQ_DECWD(&record[4])};
}

std::array<uint8_t, kWarmUpRecordSize> WarmUpRecord(std::span<const uint8_t, 4> tag, uint8_t mode,
                                                    uint8_t time) {
  return {0, 0, tag[0], tag[1], mode, time};
}

Work TakeWrite(uint32_t offset, std::span<const uint8_t> data, Parameters* parameters) {
  if (IsModeParameter(offset)) return TakeMode(offset, data, &parameters->hdr);
  if (offset == kColour && data.size() == kColourWritten) {
    parameters->colour = {.Saturation = data[0], .Contrast = data[1], .Hue = DWQ_DECWD(&data[2])};
    return Work::kSetColour;
  }
  if (offset == kWarmUp && data.size() == kWarmUpBytes) return Work::kStoreWarmUp;
  if (offset == kDevcomMode) return Work::kStoreDevcomMode;
  return Work::kNothing;
}

}  // namespace ZEPH_MCUC::hc
