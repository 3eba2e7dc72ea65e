// The gamma library's three functions, over the curves, the tone map and the matrices.
#include <platform/gamma.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "gamma/matrix.h"
#include "gamma/tonemap.h"
#include "proto/calc_curves.h"

namespace {

using namespace gamma_library;
namespace curves = ZEPH_MCUC::curves;

constexpr int kCodeBits = 12;
constexpr double kKneeUnits = 280;  // 140, the usual setting, is the published knee
constexpr double kMostRoom = 0.5;   // of the peak

// The code at which a signal of `bits`, in the upper bits of a code, is at its end.
double LastCode(int32_t bits) {
  const int32_t used = std::clamp(bits, int32_t{1}, int32_t{kCodeBits});
  return ((1 << used) - 1) << (kCodeBits - used);
}

// An entry for each code, of `light(signal)`; entries never fall, whatever rounding does.
template <class Light>
void Fill(int32_t bits, uint8_t* table, Light light) {
  const double last = LastCode(bits);
  uint16_t entry = 0;
  for (std::size_t code = 0; code < ZEPH_MCUC::kGammaEntries; ++code, table += 2) {
    const double signal = std::min(static_cast<double>(code) / last, 1.0);
    entry = std::max(entry, light(signal));
    ZEPH_MCUC::DWQ_ENCWD(table, entry);
  }
}

// A screen of no peak has one of 1, and cards that didn't tell their brightness are at full.
Screen ScreenOf(uint16_t peak_light, uint16_t ambient_light, uint8_t brightness, uint8_t low_gray,
                uint8_t high_gray) {
  const int percent = brightness == 0 ? 100 : std::min<int>(brightness, 100);
  const double peak_nits = std::max<int>(peak_light, 1) * percent / 100.0;
  const double room_nits = ambient_light * (low_gray / 255.0) / std::numbers::pi;
  return {.peak_nits = peak_nits,
          .room_nits = std::min(room_nits, kMostRoom * peak_nits),
          .knee = high_gray / kKneeUnits};
}

}  // namespace

extern "C" int32_t HDR10GammaCalculation(uint16_t peak_light, uint16_t ambient_light,
                                         uint8_t brightness, int32_t bits, uint8_t low_gray,
                                         uint8_t high_gray, uint8_t* table) {
  const ToneMap map(ScreenOf(peak_light, ambient_light, brightness, low_gray, high_gray));
  Fill(bits, table, [&map](double signal) {
    return static_cast<uint16_t>(std::lround(ZEPH_MCUC::kFullLight * map.Drive(signal)));
  });
  return 0;
}

extern "C" int32_t HLGGammaCalculation(uint8_t hlg_class, uint8_t* table) {
  constexpr int32_t kBits = 10;
  Fill(kBits, table, [hlg_class](double signal) {
    return static_cast<uint16_t>(ZEPH_MCUC::kFullLight * curves::HlgLight(signal, hlg_class));
  });
  return 0;
}

extern "C" int32_t PictureQualityCalculation(COLORSPACECONVERT conversion, uint16_t saturation,
                                             uint16_t contrast, uint16_t hue, uint8_t /*mode*/,
                                             uint8_t* matrix) {
  WriteBlock(ConversionOf(conversion, saturation, contrast, hue),
             std::span<uint8_t, kBlockSize>(matrix, kBlockSize));
  return 0;
}
