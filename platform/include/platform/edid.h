// The EDID library: complete images (VESA E-EDID 1.4 with one CEA-861 extension) from templates.
//
// A calculation without effects; any thread may call it.
#pragma once

extern "C" {

// The image that a request starts from: interface and largest preferred mode.
enum EDIDTemplate_t {
  HDMI_2K1K = 0,
  HDMI_4K1K = 1,
  HDMI_4K2K = 2,
  DVI_2K1K = 3,
  DVI_4K1K = 4,
  DP_2K1K = 5,
  DP_4K1K = 6,
  DP_4K2K = 7,
  VGA_2K1K = 8,
  HDMI_4K2K_VIC = 9,
  HDMI_4K2K_WideRes = 10,
  DP_4K2K_VIC = 11,
  DP_4K2K_WideRes = 12,
  HDMI2DP_4K2K = 13,
};

// The digital interface that the image names.
enum InterfaceType_t {
  Typ_Undef = 0,
  Typ_DVI = 1,
  Typ_HDMI_a = 2,
  Typ_HDMI_b = 3,
  Typ_MDDI = 4,
  Typ_DP = 5,
};

enum ColorSpace_t {
  RGB444 = 0,
  RGB444YCbCr444 = 1,
  RGB444YCbCr422 = 2,
  AllColSpa = 3,
};

enum ColorDepth_t {
  Col_Undef = 0,
  Col_6Bit = 1,
  Col_8Bit = 2,
  Col_10Bit = 3,
  Col_12Bit = 4,
  Col_14Bit = 5,
  Col_16Bit = 6,
};

// A CEA-861 video identification code, 0 for none.
typedef unsigned int VICNumList_t;

// Pixels, lines and frames a second.
struct EDIDResolution_t {
  unsigned int Width;
  unsigned int Height;
  unsigned int Framerate;
};

// Blanking and sync of the preferred timing in pixels and lines; a polarity is 1 for positive.
struct EDIDAdvancedRes_t {
  unsigned int HBlank;
  unsigned int HSync;
  unsigned int HOffset;
  unsigned int HPolarity;
  unsigned int VBlank;
  unsigned int VSync;
  unsigned int VOffset;
  unsigned int VPolarity;
};

// One request. Bit 0 of `ModifyState` asks for `ProductName`, bits 1 to 3 for color space, color
// depth and interface; fields that nothing asks for are not read.
struct ModifyEDIDData_t {
  EDIDTemplate_t EDIDType;
  unsigned char ModifyState;
  InterfaceType_t InterfaceType;
  char ProductName[13];  // not closed by a zero where it takes all 13
  ColorSpace_t ColorSpace;
  ColorDepth_t ColorDepth;
  VICNumList_t VICNum;
  EDIDResolution_t Resolution;
  EDIDAdvancedRes_t AdvancedResData;
};

// The library's table of functions. The daemon calls only the last; the others may be null, and
// their arguments are the library's own.
struct ModifyEDID_API_t {
  void (*Get_EDID)();
  void (*Get_EDIDVersion)();
  void (*Modify_Name)();
  void (*Modify_ColorSpace)();
  void (*Modify_ColorDepth)();
  void (*Modify_InterfaceType)();
  void (*Modify_EDID_VIC)();
  void (*Modify_EDID_Wider)();

  // Fills `out`, 256 zeroed bytes, with the image for `request`: its header in place, each block
  // summing to 0. On failure `out` is no valid image; the result is not read.
  int (*Modify_EDID)(ModifyEDIDData_t request, unsigned char* out);
};

extern const ModifyEDID_API_t ModifyEDID_API;

}  // extern "C"
