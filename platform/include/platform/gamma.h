// The gamma library: tables and color matrices as the FPGA takes them.
//
// Calculations without effects; any thread may call them. A gamma table is 8192 bytes, 4096 entries
// of 16 bits, low byte first, indexed by the 12-bit input code, rising. The buffer comes zeroed;
// the results are not read.
#pragma once

#include <cstdint>

extern "C" {

// What a color matrix converts: full or limited range, RGB or YUV.
enum COLORSPACECONVERT {
  FRtoFR = 0,
  FRtoLY = 1,
  FRtoFY = 2,
  FYtoFR = 3,
  LYtoFR = 4,
  LYtoLY = 5,
  FYtoFY = 6,
  FYtoLY = 7,
  LYtoFY = 8,
};

// The table for HDR10 (SMPTE ST 2084). `peak_light` of the screen in cd/m2, 1 up; `ambient_light`
// in lux; `brightness` in percent, 0 where nobody knows; `bits` of the signal, which stand in the
// upper bits of an input code, 10; `low_gray` and `high_gray`, the strength of the effect at both
// ends.
int32_t HDR10GammaCalculation(uint16_t peak_light, uint16_t ambient_light, uint8_t brightness,
                              int32_t bits, uint8_t low_gray, uint8_t high_gray, uint8_t* table);

// The table for HLG (ITU-R BT.2100) of a class, 0 to 6, each for a peak light; 4 is 1000 cd/m2. A
// class above 6 gives some table of the seven.
int32_t HLGGammaCalculation(uint8_t hlg_class, uint8_t* table);

// The 32 bytes of an FPGA matrix for `conversion`. `saturation` and `contrast` are 50 and `hue` is
// 0 where nothing is to change; `mode` is 0.
int32_t PictureQualityCalculation(COLORSPACECONVERT conversion, uint16_t saturation,
                                  uint16_t contrast, uint16_t hue, uint8_t mode, uint8_t* matrix);

}  // extern "C"
