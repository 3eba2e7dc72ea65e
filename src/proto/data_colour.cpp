// Gamma tables and colour matrices into the FPGA.
#include <platform/gamma.h>

#include <algorithm>

#include "driverutil.h"
#include "mcuctrace.h"
#include "proto/calc_curves.h"
#include "proto/calc_feature.h"
#include "proto/calc_hc.h"
#include "proto/calc_rgbgamma.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {
namespace {

using rgbgamma::Colour;

constexpr uint32_t kBlock = 0x400;

// Each block by itself: one that fails leaves 512 old entries, not all that follow.
void LoadTable(Colour colour, const GammaTable& table) {
  for (uint32_t at = 0; at < table.size(); at += kBlock) {
    DriverUtil::getInstance()->FPGAC5_WriteDataBlock(0, 0, rgbgamma::BusOf(colour) + at, kBlock,
                                                     &table[at]);
  }
}

bool IsTagged(const rgbgamma::Table& table) {
  std::array<uint8_t, 4> tag{};
  DriverUtil::getInstance()->ReadBytesFromFlash(table.tag, tag.size(), tag.data());
  return tag == Data_Global::IsNewFlashTag;
}

// A table that can't be read is as good as none.
bool ReadStored(const rgbgamma::Table& table, GammaTable* bytes) {
  const int32_t result =
      DriverUtil::getInstance()->ReadBytesFromFlash(table.flash, bytes->size(), bytes->data());
  if (result == 0) return true;
  MCUC_LOG(kLogError,
           "=== SendGammaToFpga ===read " << table.name << " from flash failed. ret = " << result);
  return false;
}

GammaTable Calculate(uint8_t HDRType) {
  constexpr int32_t kSignalBits = 10;
  GammaTable table{};
  if (HDRType == hc::kHDR10) {
    HDR10GammaCalculation(*PbufScrPeakLight, *PbufAmbientLight,
                          static_cast<uint8_t>(*PbufBrightness), kSignalBits,
                          static_cast<uint8_t>(*PbufLowGrayEffect),
                          static_cast<uint8_t>(*PbufHigGrayEffect), table.data());
  } else {
    HLGGammaCalculation(static_cast<uint8_t>(*PbufHLGClass), table.data());
  }
  return table;
}

void WriteSwitch(uint8_t value) {
  DriverUtil::getInstance()->FPGAC5_WriteOneWord(0, 0, hc::kSwitchBus, value);
}

void LoadCalculated(uint8_t HDRType, Data_Global* global) {
  constexpr uint8_t kSwitch[] = {hc::kSwitchHDR};
  const GammaTable table = Calculate(HDRType);
  for (const Colour colour : {Colour::kRed, Colour::kGreen, Colour::kBlue}) {
    LoadTable(colour, table);
  }
  WriteSwitch(hc::kTablesLoaded);
  global->WriteFeatureBus(feature::kHdrSwitch, kSwitch);
  MCUC_LOG(kLogInfo, "Finish HDR RGBGAMMA Sendto FPGA");
}

// The image keeps the switch as it was: only the FPGA learns of the default mode.
void LoadDefault(Data_Global* global) {
  const auto depth = static_cast<uint8_t>(*PbufSendcardBitDepth);
  global->SendGammaToFpga(depth);
  WriteSwitch(depth);
  DriverUtil::getInstance()->FPGAC5_WriteOneWord(0, 0, feature::kHdrSwitch, hc::kSwitchDefault);
  MCUC_LOG(kLogInfo,
           "Finish Deft RGBGAMMA Sendto FPGA,the SendcardBitDepth is  " << uint32_t{depth});
}

}  // namespace

void Data_Global::SendCardHDRProcess(uint8_t HDRType) {
  if (HDRType == hc::kHDR10 || HDRType == hc::kHLG) {
    LoadCalculated(HDRType, this);
  } else {
    LoadDefault(this);
  }
}

void Data_Global::SendGammaToFpga(uint8_t deep_color_mode) {
  GammaTable bytes;
  for (const auto& table : rgbgamma::TablesOf(rgbgamma::SetOf(deep_color_mode))) {
    const bool tagged = IsTagged(table);
    if (*PbufHDRType != hc::kDefaultMode) continue;
    const bool stored = tagged && ReadStored(table, &bytes);
    MCUC_LOG(kLogInfo, "SendGammaToFpga " << table.name << (stored ? " as stored" : " built in"));
    LoadTable(table.colour, stored ? bytes : GammaTable_x());
  }
}

void Data_Global::PictureQualityProcess(uint8_t Mode) {
  struct Matrix {
    COLORSPACECONVERT conversion;
    uint32_t bus;
  };
  constexpr Matrix kMatrices[] = {{FRtoFR, hc::kRgbMatrixBus}, {LYtoFR, hc::kYuvMatrixBus}};
  std::array<uint8_t, hc::kMatrixSize> cacpara{};
  for (const Matrix& matrix : kMatrices) {
    PictureQualityCalculation(matrix.conversion, *PbufSaturation, *PbufContrast, *PbufHue, Mode,
                              cacpara.data());
    DriverUtil::getInstance()->FPGAC5_WriteDataBlock(0, 0, matrix.bus, cacpara.size(),
                                                     cacpara.data());
  }
}

}  // namespace ZEPH_MCUC
