#include "process/calc_inputsource.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "process/calc_registerimage.h"

namespace ZEPH_MCUC {
namespace {

// By the low nibble of a board's id, then by the second one.
constexpr en_fpga_input_ch_t g_fpga_ch_table[3][6] = {
    {EN_FPGA_IN_CH1, EN_FPGA_IN_CH2, EN_FPGA_IN_CH3, EN_FPGA_IN_CH4, EN_FPGA_IN_CH1,
     EN_FPGA_IN_CH1},
    {EN_FPGA_IN_CH5, EN_FPGA_IN_CH_INVALID, EN_FPGA_IN_CH_INVALID, EN_FPGA_IN_CH_INVALID,
     EN_FPGA_IN_CH1, EN_FPGA_IN_CH1},
    {EN_FPGA_IN_CH6, EN_FPGA_IN_CH_INVALID, EN_FPGA_IN_CH_INVALID, EN_FPGA_IN_CH_INVALID,
     EN_FPGA_IN_CH1, EN_FPGA_IN_CH1},
};

constexpr uint8_t kSourceIds[kReachableGroups] = {0x61, 0x62, 0x50};

constexpr RegisterImage kResImage{&InResPara_T::InResHor, &InResPara_T::InResVer,
                                  &InResPara_T::InResFrame};
constexpr RegisterImage kPlusImage{&InPlusPara_T::Limit2Full, &InPlusPara_T::HdcpOn};
static_assert(kInputGroups * (kResImage.kSize + kPlusImage.kSize) == kInSetParaSize);

constexpr std::size_t kPlusAt = kInputGroups * kResImage.kSize;

// What stands for a signal that isn't measured: 1920 by 1080 at 60 Hz.
constexpr uint16_t kPresetWidth = 1920;
constexpr uint16_t kPresetHeight = 1080;
constexpr uint16_t kPresetPeriod_us = 16665;

constexpr int kPeriodTolerance_us = 10;
constexpr uint16_t kLeastSize = 64;           // of a picture, exclusive
constexpr uint8_t kFieldsGroup = EN_INPUT_E;  // counts both fields already

input_source_res_t Measured(const fpag_in_res_reg_t& measured, const source_t& source) {
  if (SourceType(source.src_code) == EN_ST_UDISK) {
    return {0, kPresetWidth, kPresetHeight, kPresetPeriod_us};
  }
  const bool fields = measured.interlace_mode != 0 && source.group != kFieldsGroup;
  const auto height = static_cast<uint16_t>(measured.active_height * (fields ? 2 : 1));
  return {measured.timing_state, measured.active_width, height, measured.frame_rate};
}

bool Differs(const input_source_res_t& now, const input_source_res_t& before) {
  if (now.is_stable != before.is_stable) return true;
  const int drift_us = std::abs(int{now.v_period_us} - int{before.v_period_us});
  return before.is_stable != 0 &&
         (now.h_active != before.h_active || now.v_active != before.v_active ||
          drift_us >= kPeriodTolerance_us);
}

}  // namespace

en_fpga_input_ch_t ChannelOfBoard(uint16_t id) {
  const std::size_t slot = id & 0x0F;
  const std::size_t connector = (id & 0xF0) >> 4;
  if (slot >= std::size(g_fpga_ch_table) || connector >= std::size(g_fpga_ch_table[0])) {
    return EN_FPGA_IN_CH_INVALID;
  }
  return g_fpga_ch_table[slot][connector];
}

uint8_t GroupOfSourceId(uint8_t source_id) {
  const auto* const found = std::find(std::begin(kSourceIds), std::end(kSourceIds), source_id);
  return found == std::end(kSourceIds) ? 0 : static_cast<uint8_t>(found - std::begin(kSourceIds));
}

uint8_t SourceIdOfGroup(uint8_t group) { return group < kReachableGroups ? kSourceIds[group] : 0; }

InSetParaBytes PackInSetPara(const InSetPara_T& para) {
  InSetParaBytes bytes{};
  auto at = bytes.begin();
  for (const InResPara_T& res : para.InRes) {
    const auto packed = kResImage.Pack(res);
    at = std::copy(packed.begin(), packed.end(), at);
  }
  for (const InPlusPara_T& plus : para.InPlus) {
    const auto packed = kPlusImage.Pack(plus);
    at = std::copy(packed.begin(), packed.end(), at);
  }
  return bytes;
}

InSetPara_T UnpackInSetPara(std::span<const uint8_t, kInSetParaSize> bytes) {
  InSetPara_T para{};
  for (std::size_t group = 0; group < kInputGroups; ++group) {
    const auto res = bytes.subspan(group * kResImage.kSize);
    const auto plus = bytes.subspan(kPlusAt + group * kPlusImage.kSize);
    para.InRes[group] = kResImage.Unpack(res.first<kResImage.kSize>());
    para.InPlus[group] = kPlusImage.Unpack(plus.first<kPlusImage.kSize>());
  }
  return para;
}

bool TakeMeasurement(const fpag_in_res_reg_t& measured, source_t* source) {
  const input_source_res_t now = Measured(measured, *source);
  const bool changed = Differs(now, source->res);
  source->res = now;
  if (now.is_stable == 0) {
    source->res = {0, kPresetWidth, kPresetHeight, kPresetPeriod_us};
  }
  const bool linked = now.is_stable == 1 && now.h_active > kLeastSize && now.v_active > kLeastSize;
  source->signal_state = linked ? EN_SSS_SIGNAL_LINK : EN_SSS_NOSIGNAL;
  return changed;
}

}  // namespace ZEPH_MCUC
