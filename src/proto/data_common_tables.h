// The word tables of the layout calculations and the names of their slots.
#pragma once

#include <array>
#include <cstddef>

#include "mcucutil.h"

namespace ZEPH_MCUC {

inline constinit std::array<vu16, 512> ParaTable{};
inline constinit std::array<vu16, 512> AdvCfgParaTable{};
inline constinit std::array<vu8, 32> ParaCharTable{};

// Slots of `ParaTable`.
inline vu16* const PbufBrightness = &ParaTable[0];
inline vu16* const PbufGamma = &ParaTable[1];
inline vu16* const PbufRedBri = &ParaTable[2];
inline vu16* const PbufGreenBri = &ParaTable[3];
inline vu16* const PbufBlueBri = &ParaTable[4];
inline vu16* const PbufColorTemp = &ParaTable[5];
inline vu16* const PbufHRes = &ParaTable[6];
inline vu16* const PbufVRes = &ParaTable[7];
inline vu16* const PbufInputRefrate = &ParaTable[8];
inline vu16* const PbufOffSetX = &ParaTable[9];
inline vu16* const PbufOffSetY = &ParaTable[10];
inline vu16* const PbufScreenWidth = &ParaTable[11];
inline vu16* const PbufScreenHeight = &ParaTable[12];
inline vu16* const PbufCalCfgRow = &ParaTable[13];
inline vu16* const PbufCalCfgCol = &ParaTable[14];
inline vu16* const PbufCalCfgNum = &ParaTable[15];
inline vu16* const PbufCalCfgCM = &ParaTable[16];
// `Data_Global` has a field of this name too, which is the one that is stored and read.
inline vu16* const PbufMorSMode = &ParaTable[17];
inline vu16* const PbufHDRType = &ParaTable[18];
inline vu16* const PbufHLGClass = &ParaTable[19];
inline vu16* const PbufScrPeakLight = &ParaTable[20];
inline vu16* const PbufAmbientLight = &ParaTable[21];
inline vu16* const PbufLowGrayEffect = &ParaTable[22];
inline vu16* const PbufHigGrayEffect = &ParaTable[23];
inline vu16* const PbufContrast = &ParaTable[24];
inline vu16* const PbufSaturation = &ParaTable[25];
inline vu16* const PbufHue = &ParaTable[26];
inline vu16* const PbufSendcardBitDepth = &ParaTable[27];

// Slots of `AdvCfgParaTable`: five a port, for ports 1 to 16.
enum AdvCfgField : std::size_t { kAdvCfgRow, kAdvCfgCol, kAdvCfgX, kAdvCfgY, kAdvCfgCM };
inline constexpr std::size_t kAdvCfgFields = 5;

// The slot of a field of port `port`, 1 to 16.
inline vu16* PbufAdvCfgPort(std::size_t port, AdvCfgField field) {
  return &AdvCfgParaTable[kAdvCfgFields * (port - 1) + field];
}

// Slots of `ParaCharTable`: byte 0 is the smart configuration's, then the connection mode of port
// `port`, 1 to 16.
inline vu8* PbufAdvPortCM(std::size_t port) { return &ParaCharTable[port]; }

}  // namespace ZEPH_MCUC
