// platform/edid.h and platform/gamma.h: calculations, the same for the same input.
#include <platform/edid.h>
#include <platform/gamma.h>

#include <cstring>

#include "check/report.h"

namespace check {
namespace {

constexpr std::size_t kImageSize = 256, kTableSize = 8192, kMatrixSize = 32;

Buffer Zeroed(std::size_t size) {
  Buffer buffer(size);
  std::memset(buffer.data(), 0, size);
  return buffer;
}

bool IsImage(Buffer& image) {
  constexpr std::uint8_t kHeader[] = {0, 255, 255, 255, 255, 255, 255, 0};
  if (std::memcmp(image.data(), kHeader, sizeof kHeader) != 0) return false;
  std::uint8_t sums[2] = {};
  for (std::size_t i = 0; i < kImageSize; ++i) {
    sums[i / 128] = static_cast<std::uint8_t>(sums[i / 128] + image.data()[i]);
  }
  return sums[0] == 0 && sums[1] == 0 && image.Untouched(kImageSize);
}

bool IsRising(Buffer& table) {
  unsigned before = 0;
  for (std::size_t i = 0; i < kTableSize; i += 2) {
    const unsigned entry = table.data()[i] | table.data()[i + 1] << 8;
    if (entry < before) return false;
    before = entry;
  }
  return before > 0 && table.Untouched(kTableSize);
}

// Runs a calculation twice; true where both results are the same and `good`.
template <class Calculate, class Good>
bool Twice(std::size_t size, Calculate calculate, Good good) {
  Buffer first = Zeroed(size), second = Zeroed(size);
  calculate(first.data());
  calculate(second.data());
  return first == second && good(first);
}

bool TableIsGood(int hlg_class) {
  return Twice(
      kTableSize,
      [&](std::uint8_t* table) {
        HLGGammaCalculation(static_cast<std::uint8_t>(hlg_class), table);
      },
      IsRising);
}

}  // namespace

void Edid(Report& report, const Options&) {
  bool good = ModifyEDID_API.Modify_EDID != nullptr;
  report.Holds(good, "the library has its calculation");
  for (int kind = HDMI_2K1K; good && kind <= HDMI2DP_4K2K; ++kind) {
    ModifyEDIDData_t request{};
    request.EDIDType = static_cast<EDIDTemplate_t>(kind);
    request.ModifyState = 1;
    std::memcpy(request.ProductName, "ThirteenBytes", sizeof request.ProductName);
    good = Twice(
        kImageSize, [&](std::uint8_t* out) { ModifyEDID_API.Modify_EDID(request, out); }, IsImage);
  }
  report.Holds(good, "each template becomes a valid image of 256 bytes");
}

void Gamma(Report& report, const Options&) {
  report.Holds(
      Twice(
          kTableSize,
          [](std::uint8_t* table) { HDR10GammaCalculation(1000, 100, 100, 10, 140, 140, table); },
          IsRising),
      "the table for HDR10 rises over 4096 entries");
  bool good = true;
  for (int hlg_class = 0; hlg_class < 7; ++hlg_class) good = TableIsGood(hlg_class) && good;
  report.Holds(good, "the seven tables for HLG rise over 4096 entries");
  good = TableIsGood(255);
  report.Holds(good, "a class that HLG has not gives some table");
  good = true;
  for (int kind = FRtoFR; kind <= LYtoFY; ++kind) {
    good =
        Twice(
            kMatrixSize,
            [&](std::uint8_t* matrix) {
              PictureQualityCalculation(static_cast<COLORSPACECONVERT>(kind), 50, 50, 0, 0, matrix);
            },
            [](const Buffer& matrix) { return matrix.Untouched(kMatrixSize); }) &&
        good;
  }
  report.Holds(good, "each color matrix stays within 32 bytes");
  report.Holds(AtOnce(4, TableIsGood), "several threads may calculate");
}

}  // namespace check
