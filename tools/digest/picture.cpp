#include <platform/gamma.h>

#include <array>

#include "digest.h"
#include "proto/calc_curves.h"
#include "support/rounds.h"

namespace digest {
namespace {

using namespace ZEPH_MCUC;

void Curves(Digest& digest) {
  digest.Add(GammaTable_x());
  for (int exponent = 10; exponent <= 30; ++exponent) {
    for (const int bits : {1, 8, 10, 12}) digest.Add(PowerTable(exponent / 10.0, bits));
  }
  for (const float entry : _PQEOTable()) digest.Add(entry);
  for (uint8_t mode = 0; mode <= 7; ++mode) {
    for (const uint16_t entry : HLGTempTableMode(mode)) digest.Add(entry);
  }
}

void Hdr10(Digest& digest) {
  support::Random random(21);
  for (int i = 0; i < 300; ++i) {
    GammaTable table{};
    const auto peak = static_cast<uint16_t>(random(1, 10000));
    const auto ambient = static_cast<uint16_t>(random(0, 2000));
    const auto brightness = static_cast<uint8_t>(random(0, 100));
    const auto low = static_cast<uint8_t>(random(0, 255)),
               high = static_cast<uint8_t>(random(0, 255));
    HDR10GammaCalculation(peak, ambient, brightness, 10, low, high, table.data());
    digest.Add(table);
  }
}

void Hlg(Digest& digest) {
  for (uint8_t hlg_class = 0; hlg_class < 8; ++hlg_class) {
    GammaTable table{};
    HLGGammaCalculation(hlg_class, table.data());
    digest.Add(table);
  }
}

void Matrices(Digest& digest) {
  support::Random random(22);
  for (int i = 0; i < 5000; ++i) {
    std::array<uint8_t, 32> matrix{};
    const auto conversion = static_cast<COLORSPACECONVERT>(random(FRtoFR, LYtoFY));
    const auto saturation = static_cast<uint16_t>(random(0, 100));
    const auto contrast = static_cast<uint16_t>(random(0, 100));
    const auto hue = static_cast<uint16_t>(random(0, 359));
    PictureQualityCalculation(conversion, saturation, contrast, hue, 0, matrix.data());
    digest.Add(matrix);
  }
}

constexpr Subject kSubjects[] = {{"gamma curves", Curves},
                                 {"gamma tables for HDR10", Hdr10},
                                 {"gamma tables for HLG", Hlg},
                                 {"colour matrices", Matrices}};

}  // namespace

std::span<const Subject> PictureSubjects() { return kSubjects; }

}  // namespace digest
