#include "colour/scene.h"

#include <algorithm>

namespace quivord::colour {
namespace {

namespace hc = ZEPH_MCUC::hc;
namespace curves = ZEPH_MCUC::curves;

// At which an HDR signal of 10 bits, in the upper bits of a code, ends.
constexpr double kLastCode = 4092;

std::uint16_t PeakOf(const hc::HDRParaData& mode) {
  if (mode.HDRType == hc::kHDR10) return std::max<std::uint16_t>(mode.fScreenPeakLight, 1);
  return curves::kHlgPeaks_nits[std::min(mode.HLGCalss, curves::kHlgLastClass)];
}

}  // namespace

Reference ReferenceOf(const Scene& scene) {
  switch (scene.mode.HDRType) {
    case hc::kHDR10:
      return {"SMPTE ST 2084, clipped at " + std::to_string(PeakOf(scene.mode)) + " cd/m²",
              static_cast<double>(PeakOf(scene.mode))};
    case hc::kHLG:
      return {"ITU-R BT.2100 HLG for " + std::to_string(PeakOf(scene.mode)) + " cd/m²",
              static_cast<double>(PeakOf(scene.mode))};
    default:
      return {"the built-in default, a power of 2.8", 0};
  }
}

double ReferenceLight(const Scene& scene, std::size_t code) {
  const double signal = std::min(static_cast<double>(code) / kLastCode, 1.0);
  switch (scene.mode.HDRType) {
    case hc::kHDR10:
      return std::min(curves::PqLight(signal) * curves::kPqPeak_nits / PeakOf(scene.mode), 1.0);
    case hc::kHLG:
      return curves::HlgLight(signal, scene.mode.HLGCalss);
    default:
      return ZEPH_MCUC::GammaEntry(ZEPH_MCUC::GammaTable_x(), code) /
             static_cast<double>(ZEPH_MCUC::kFullLight);
  }
}

std::string TitleText(const Scene& scene) {
  if (scene.tables == Tables::kLeftOver) return "Gamma tables left from an HDR mode";
  if (scene.tables == Tables::kUnknown) return "Gamma tables";
  switch (scene.mode.HDRType) {
    case hc::kHDR10:
      return "Gamma tables for HDR10";
    case hc::kHLG:
      return "Gamma tables for HLG";
    default:
      return "Gamma tables of the default mode";
  }
}

std::string SubtitleText(const Scene& scene) {
  const auto& set = scene.set;
  std::string text = "As the FPGA holds them: ";
  if (set[0] != set[1] || set[1] != set[2]) {
    return text + "red " + CurveText(set[0]) + ", green " + CurveText(set[1]) + ", blue " +
           CurveText(set[2]);
  }
  text += "all colours alike, ";
  if (scene.mode.HDRType != hc::kHDR10) return text + CurveText(set[0]);
  return text + "calculated for a screen of " + std::to_string(PeakOf(scene.mode)) +
         " cd/m² in a room of " + std::to_string(scene.mode.fambientLight) + " lux";
}

}  // namespace quivord::colour
