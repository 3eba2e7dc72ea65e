#include "proto/data_feature_bypass.h"

#include "driverutil.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint8_t kOffsetsFromRegisters = 1;
constexpr uint8_t kOffsetsFromService = 2;
constexpr uint8_t kScreenMarked = 0x55;
constexpr uint16_t kForward = 0xFFFF;  // a port distance for a positive offset
constexpr uint8_t kZeros[4] = {};

void WriteBus(uint32_t address, std::span<const uint8_t> bytes) {
  // The layer below logs what fails, and the next step runs.
  DriverUtil::getInstance()->WriteFPGABusBlock(address, bytes.data(),
                                               static_cast<uint32_t>(bytes.size()));
}

void WriteBusWord(uint32_t address, uint16_t value) {
  const uint8_t bytes[] = {static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8)};
  WriteBus(address, bytes);
}

void ClearDistances() {
  WriteBusWord(feature::kDistanceX, 0);
  WriteBusWord(feature::kDistanceY, 0);
}

// The screen's state says that the offsets changed.
void MarkScreen(Data_Global& global) {
  global.ScreenParaReg[0] = global.ScreenParaReg[1] == kScreenMarked ? 1 : 3;
}

// Copies an offset of the image, at `offset`, to its echo in the screen parameters.
void EchoOffset(FeatureWrite& write, uint32_t offset) {
  const uint32_t at = 2 + offset - feature::kOffsetX;
  write.global.ScreenParaReg.setU16(at, write.reg.u16(offset));
}

void TakeOffsetsFromRegisters(FeatureWrite& write) {
  auto& reg = write.reg;
  reg[feature::kBypass] = kOffsetsFromRegisters;
  ClearDistances();
  reg.setU32(feature::kBypassX, 0U - reg.u16(feature::kOffsetX));
  reg.setU32(feature::kBypassY, 0U - reg.u16(feature::kOffsetY));
}

// The cells of one axis.
struct Axis {
  uint32_t bypass;    // the signed offset
  uint32_t offset;    // its size, as clients see it
  uint32_t distance;  // its direction
  uint32_t real;      // the size of the picture without it
  uint32_t screen;    // the size with it
  uint16_t point;
  const char* changed;
};
constexpr Axis kX = {feature::kBypassX,
                     feature::kOffsetX,
                     feature::kDistanceX,
                     feature::kRealWidth,
                     feature::kScreenWidth,
                     1,
                     "Bypass mode tmp_x changed!!"};
constexpr Axis kY = {feature::kBypassY,
                     feature::kOffsetY,
                     feature::kDistanceY,
                     feature::kRealHeight,
                     feature::kScreenHeight,
                     2,
                     "Bypass mode tmp_y changed!!"};

void TakeOffsetFromService(FeatureWrite& write, const Axis& axis) {
  auto& reg = write.reg;
  const auto value = static_cast<int32_t>(reg.u32(axis.bypass));
  const auto size = static_cast<uint16_t>(value < 0 ? 0U - static_cast<uint32_t>(value)
                                                    : static_cast<uint32_t>(value));
  WriteBusWord(axis.offset, size);
  if (value <= 0) {
    reg.setU16(axis.offset, size);
    reg.setU16(axis.screen, static_cast<uint16_t>(size + reg.u16(axis.real)));
    write.global.DebugForScreenZero(axis.point, write.address, axis.changed);
    MarkScreen(write.global);
    EchoOffset(write, axis.offset);
  }
  WriteBusWord(axis.distance, value <= 0 ? 0 : kForward);
}

void Subtract(SharedBytes<512>& reg, uint32_t from, uint32_t what) {
  reg.setU16(from, static_cast<uint16_t>(reg.u16(from) - reg.u16(what)));
}

void SwitchBypass(FeatureWrite& write, bool on) {
  auto& reg = write.reg;
  if (on) reg[feature::kBypass] = kOffsetsFromRegisters;
  ClearDistances();
  WriteBus(feature::kOffsetX, on ? reg.snapshot<4>(feature::kOffsetX) : std::array<uint8_t, 4>{});
  Subtract(reg, feature::kScreenWidth, feature::kOffsetX);
  Subtract(reg, feature::kScreenHeight, feature::kOffsetY);
  reg.write(feature::kOffsetX, kZeros);
  reg.setU32(feature::kBypassX, 0);
  reg.setU32(feature::kBypassY, 0);
  write.switched = {reg.snapshot<4>(feature::kOffsetX), reg.snapshot<4>(feature::kScreenWidth)};
  MarkScreen(write.global);
  EchoOffset(write, feature::kOffsetX);
  EchoOffset(write, feature::kOffsetY);
  write.global.DebugForScreenZero(
      on ? 3 : 4, write.address,
      on ? "Bypass mode change to mode bypass!!" : "Bypass mode change to mode Normal!!");
}

}  // namespace

void ApplyBypass(FeatureWrite& write) {
  const uint32_t at = write.address - feature::kBase;
  if ((at == feature::kOffsetX || at == feature::kOffsetY) && write.BypassIsOn()) {
    TakeOffsetsFromRegisters(write);
    return;
  }
  if (at == feature::kBypassX && write.length() == 8 && write.BypassIsOn()) {
    write.reg[feature::kBypass] = kOffsetsFromService;
    TakeOffsetFromService(write, kX);
    TakeOffsetFromService(write, kY);
  }
  if (at == feature::kBypass && write.length() == 1) {
    const uint8_t value = write.reg[feature::kBypass];
    if (value == feature::kBypassOn || value == 0) SwitchBypass(write, value != 0);
  }
}

void SendBypassGeometry(FeatureWrite& write) {
  if (!write.switched.has_value()) return;
  write.global.WriteFeatureBus(feature::kOffsetX, write.switched->offsets);
  write.global.WriteFeatureBus(feature::kScreenWidth, write.switched->size);
  write.global.ChangeOutScreenPara(write.reg.u16(feature::kScreenWidth),
                                   write.reg.u16(feature::kScreenHeight));
}

}  // namespace ZEPH_MCUC
