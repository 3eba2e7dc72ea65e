// The human-computer interaction space: what a client sets of the picture, and the records that
// carry it on. Pure, any thread. Values of two bytes are little-endian.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace ZEPH_MCUC::hc {

inline constexpr uint32_t kBase = 0x02200000;
inline constexpr uint32_t kWriteSize = 0x1FF;  // bytes that writes reach

// Offsets of the space.
inline constexpr uint32_t kDevcomMode = 0x0C0;
inline constexpr uint32_t kHDRType = 0x117;
inline constexpr uint32_t kPeakLight = 0x118;
inline constexpr uint32_t kAmbientLight = 0x11A;
inline constexpr uint32_t kHLGClass = 0x129;
inline constexpr uint32_t kWarmUp = 0x12C;
inline constexpr uint32_t kMinLum = 0x12E;
inline constexpr uint32_t kColour = 0x13A;

// Where in the FPGA the settings end up, beside the gamma tables and the feature registers.
inline constexpr uint32_t kSwitchBus = 0x500109;     // one byte: `kTablesLoaded`, or the bit depth
inline constexpr uint32_t kRgbMatrixBus = 0xD00000;  // 32 bytes: full RGB to full RGB
inline constexpr uint32_t kYuvMatrixBus = 0xD00040;  // limited YUV to full RGB
inline constexpr uint32_t kMatrixSize = 32;
inline constexpr uint8_t kTablesLoaded = 0x5A;

// Values of the feature register of the HDR switch.
inline constexpr uint8_t kSwitchHDR = 0x58;  // HDR10 and HLG alike
inline constexpr uint8_t kSwitchDefault = 0xFF;

// Lengths of the accesses that take just one.
inline constexpr int kAllParameters = 25;  // from kHDRType on
inline constexpr int kSomeParameters = 4;
inline constexpr int kWarmUpBytes = 2;    // mode, time
inline constexpr int kColourWritten = 4;  // saturation and contrast in one byte each, hue in two
inline constexpr int kColourRead = 6;     // contrast, saturation, hue in two each

// Values of `HDRType`; 0 is the default mode, any other leaves the tables as they are.
inline constexpr uint8_t kDefaultMode = 0;
inline constexpr uint8_t kHDR10 = 0x58;
inline constexpr uint8_t kHLG = 0x78;

// A mode change on its way to the work thread, and the last one as the store has it.
struct HDRParaData {
  uint8_t HDRType = kDefaultMode;
  uint8_t HLGCalss = 4;
  uint8_t brightness = 0;            // of the cards, percent; 0 where they didn't say
  uint16_t fScreenPeakLight = 1000;  // cd/m2
  uint16_t fambientLight = 30;       // lux
  uint8_t pMinLum = 15;              // low gray effect
  uint8_t pdelta = 140;              // high gray effect
};
inline constexpr std::size_t kHDRParaSize = 10;
std::array<uint8_t, kHDRParaSize> Encode(const HDRParaData& record);
HDRParaData DecodeHDR(std::span<const uint8_t> bytes);  // missing bytes are 0

// A new colour setting on its way.
struct CSCParaData {
  uint16_t Saturation = 50;
  uint16_t Contrast = 50;
  uint16_t Hue = 0;
};
inline constexpr std::size_t kCSCParaSize = 6;
std::array<uint8_t, kCSCParaSize> Encode(const CSCParaData& record);
CSCParaData DecodeCSC(std::span<const uint8_t> bytes);

// The warm-up setting as stored.
inline constexpr std::size_t kWarmUpRecordSize = 6;
inline constexpr std::size_t kWarmUpRecordSetting = 4;  // mode and time stand here
std::array<uint8_t, kWarmUpRecordSize> WarmUpRecord(std::span<const uint8_t, 4> tag, uint8_t mode,
                                                    uint8_t time);

// What a client has set since the start.
struct Parameters {
  HDRParaData hdr;
  CSCParaData colour;
};

// What a write asks for beyond the parameters.
enum class Work : uint8_t {
  kNothing,
  kLoadHDR10,
  kLoadHLG,  // or the default mode
  kSetColour,
  kStoreWarmUp,
  kStoreDevcomMode,
};

// Takes a write of `data`, not empty, at `offset` into the parameters. A parameter of a mode counts
// only while that mode is chosen; each write of one asks for the whole mode again.
Work TakeWrite(uint32_t offset, std::span<const uint8_t> data, Parameters* parameters);

// A card's brightness byte in percent.
constexpr uint8_t Percent(uint8_t brightness) {
  return static_cast<uint8_t>(brightness * 100 / 255);
}

}  // namespace ZEPH_MCUC::hc
