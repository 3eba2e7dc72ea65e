#include "proto/calc_curves.h"

#include <algorithm>
#include <cmath>

namespace ZEPH_MCUC {
namespace curves {
namespace {

namespace pq {
constexpr double kM1 = 2610.0 / 16384;
constexpr double kM2 = 2523.0 / 4096 * 128;
constexpr double kC1 = 3424.0 / 4096;
constexpr double kC2 = 2413.0 / 4096 * 32;
constexpr double kC3 = 2392.0 / 4096 * 32;
}  // namespace pq

namespace hlg {
constexpr double kA = 0.17883277;
constexpr double kB = 0.28466892;
constexpr double kC = 0.55991073;
}  // namespace hlg

}  // namespace

double PqLight(double signal) {
  const double root = std::pow(signal, 1 / pq::kM2);
  return std::pow(std::max(root - pq::kC1, 0.0) / (pq::kC2 - pq::kC3 * root), 1 / pq::kM1);
}

double PqSignal(double light) {
  const double root = std::pow(light, pq::kM1);
  return std::pow((pq::kC1 + pq::kC2 * root) / (1 + pq::kC3 * root), pq::kM2);
}

double HlgScene(double signal) {
  if (signal <= 0.5) return signal * signal / 3;
  return (std::exp((signal - hlg::kC) / hlg::kA) + hlg::kB) / 12;
}

double HlgExponent(double peak_nits) { return 1.2 + 0.42 * std::log10(peak_nits / 1000); }

double HlgLight(double signal, uint8_t hlg_class) {
  const uint16_t peak_nits = kHlgPeaks_nits[std::min(hlg_class, kHlgLastClass)];
  // The published constants are rounded: the scene's white is a hair above 1.
  return std::min(std::pow(HlgScene(signal), HlgExponent(peak_nits)), 1.0);
}

}  // namespace curves

GammaTable PowerTable(double exponent, int bits, int offset) {
  const double last = (1 << bits) - 1;
  GammaTable table;
  for (std::size_t code = 0; code < kGammaEntries; ++code) {
    const auto signal = static_cast<double>(code >> (12 - bits));
    const double light = std::pow((signal + offset) / (last + offset), exponent);
    SetGammaEntry(&table, code, static_cast<uint16_t>(kFullLight * light));
  }
  return table;
}

const GammaTable& GammaTable_x() {
  static const GammaTable table = PowerTable(2.8, 10, 1);
  return table;
}

const std::array<float, kGammaEntries>& _PQEOTable() {
  static const auto table = [] {
    std::array<float, kGammaEntries> light;
    for (std::size_t i = 0; i < light.size(); ++i) {
      const double signal = static_cast<double>(i) / (kGammaEntries - 1);
      light[i] = static_cast<float>(kFullLight * curves::PqLight(signal));
    }
    return light;
  }();
  return table;
}

const std::array<uint16_t, 1024>& HLGTempTableMode(uint8_t mode) {
  static const auto tables = [] {
    std::array<std::array<uint16_t, 1024>, curves::kHlgPeaks_nits.size()> all;
    for (std::size_t hlg_class = 0; hlg_class < all.size(); ++hlg_class) {
      for (std::size_t i = 0; i < 1024; ++i) {
        const double light =
            curves::HlgLight(static_cast<double>(i) / 1023, static_cast<uint8_t>(hlg_class));
        all[hlg_class][i] = static_cast<uint16_t>(kFullLight * light);
      }
    }
    return all;
  }();
  return tables[std::min(mode, curves::kHlgLastClass)];
}

}  // namespace ZEPH_MCUC
