// Handlers of colour and picture: mode changes, colour settings, gamma tables, test patterns, and
// the warm-up setting that comes the same way.
#include <algorithm>

#include "driverutil.h"
#include "process/tprocess.h"
#include "process/tprocess_common.h"
#include "proto/calc_flashmap.h"
#include "proto/calc_hc.h"
#include "proto/calc_pattern.h"
#include "proto/calc_rgbgamma.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {
namespace {

std::span<const uint8_t> Bytes(int lenth, const char* data) {
  return {reinterpret_cast<const uint8_t*>(data), static_cast<std::size_t>(std::max(lenth, 0))};
}

// Loads the mode that was asked for and stores the request as it came.
void ChangeMode(std::span<const uint8_t> request) {
  constexpr std::size_t kMostStored = 32;
  Data_Global::getInstance()->SendCardHDRProcess(static_cast<uint8_t>(*PbufHDRType));
  const auto stored = request.first(std::min(request.size(), kMostStored));
  const int32_t result = DriverUtil::getInstance()->WriteDataToFlash(
      flash::kHCInteraction, static_cast<uint32_t>(stored.size()), stored.data());
  if (result != 0) {
    MCUC_LOG(kLogError,
             "=== WriteToHCInteraction ===write to page program failed. driverRet = " << result);
  }
}

void StoreGamma(const char* name, uint32_t flash, std::span<const uint8_t> bytes) {
  const int32_t result = DriverUtil::getInstance()->WriteDataToFlash(
      flash, static_cast<uint32_t>(bytes.size()), bytes.data());
  if (result != 0) {
    MCUC_LOG(kLogError, "=== Write_" << name << "Info ===" << name
                                     << " info to flash failed. ret = " << result);
  }
}

void StorePiece(const rgbgamma::Table& table, const PenetrateInfo& info) {
  const rgbgamma::Piece piece = rgbgamma::PieceOf(table, info.Register, info.length);
  if (!piece.fits) {
    MCUC_LOG(kLogError, "=== Write_" << table.name << "Info ===piece passes the table's end");
    return;
  }
  StoreGamma(table.name, piece.flash, info.data);
  if (piece.endsTable) StoreGamma(table.name, table.tag, Data_Global::IsNewFlashTag);
  if (piece.endsSet) Data_Global::getInstance()->SendGammaToFpga(piece.deep_color_mode);
}

void WriteGamma(const PenetrateInfo& info) {
  if (const auto* table = rgbgamma::FindTable(info.Register); table != nullptr) {
    StorePiece(*table, info);
  } else if (const auto* value = rgbgamma::FindValue(info.Register, info.length);
             value != nullptr) {
    StoreGamma(value->name, value->flash, info.data);
  }
}

void WritePattern(const PenetrateInfo& info) {
  const uint32_t offset = info.Register - pattern::kBase;
  if (offset > pattern::kSize || info.length > pattern::kSize - offset) {
    MCUC_LOG(kLogError, "=== Sprocess_ScreenPatternGen ===Invalid addr+len, return! address = "
                            << CTrace::hex << info.Register << " length = " << info.length);
    return;
  }
  Data_Global* global = Data_Global::getInstance();
  global->HardwareScreenGenReg.write(offset, info.data);
  global->ScreenPatternGenProcess(&global->HardwareScreenGenReg);
}

void StoreWarmUp(uint8_t mode, uint8_t time) {
  Data_Global* global = Data_Global::getInstance();
  global->ChangeParaForKeepWarmUpMode = mode;
  global->ParaForKeepWarmUpModeTimeData = time;
  const auto record = hc::WarmUpRecord(Data_Global::IsNewFlashTag, mode, time);
  const int32_t result =
      DriverUtil::getInstance()->WriteDataToFlash(flash::kWarmUp, record.size(), record.data());
  if (result != 0) {
    MCUC_LOG(kLogError,
             "=== WriteToBackupInfo ===Write DisplayWarmUp to flash failed. ret = " << result);
  }
}

}  // namespace

int Tprocess::Sprocess_HDR10(int lenth, char* data) {
  return RunHandler("Sprocess_HDR10", data, [=] {
    const hc::HDRParaData request = hc::DecodeHDR(Bytes(lenth, data));
    *PbufHDRType = request.HDRType;
    *PbufScrPeakLight = request.fScreenPeakLight;
    *PbufAmbientLight = request.fambientLight;
    *PbufLowGrayEffect = request.pMinLum;
    *PbufHigGrayEffect = request.pdelta;
    *PbufBrightness = request.brightness;
    ChangeMode(Bytes(lenth, data));
  });
}

int Tprocess::Sprocess_HLG(int lenth, char* data) {
  return RunHandler("Sprocess_HLG", data, [=] {
    const hc::HDRParaData request = hc::DecodeHDR(Bytes(lenth, data));
    *PbufHDRType = request.HDRType;
    *PbufHLGClass = request.HLGCalss;
    ChangeMode(Bytes(lenth, data));
  });
}

int Tprocess::Sprocess_PictureQualityCal(int lenth, char* data) {
  return RunHandler("Sprocess_PictureQualityCal", data, [=] {
    const hc::CSCParaData request = hc::DecodeCSC(Bytes(lenth, data));
    *PbufContrast = request.Contrast;
    *PbufSaturation = request.Saturation;
    *PbufHue = request.Hue;
    Data_Global::getInstance()->PictureQualityProcess(0);
  });
}

int Tprocess::Sprocess_DisplayWarmUp(int lenth, char* data) {
  return RunHandler("Sprocess_DisplayWarmUp", data, [=] {
    const auto setting = Bytes(lenth, data);
    LogBytes("Sprocess_DisplayWarmUp", setting);
    if (setting.size() >= hc::kWarmUpBytes) StoreWarmUp(setting[0], setting[1]);
  });
}

int Tprocess::Sprocess_SenderRGBGamma(int /*lenth*/, char* data) {
  return RunPenetrateHandler("Sprocess_SenderRGBGamma", data, WriteGamma);
}

int Tprocess::Sprocess_ScreenPatternGen(int /*lenth*/, char* data) {
  return RunPenetrateHandler("Sprocess_ScreenPatternGen", data, WritePattern);
}

}  // namespace ZEPH_MCUC
