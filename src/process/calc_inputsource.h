// Sources as records and tables: which FPGA channel a source comes in by, which group a client
// means, the record of stored modes, the verdict on a measured signal.
//
// Pure; any thread.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace ZEPH_MCUC {

enum en_source_signal_state_t : uint8_t {
  EN_SSS_INVALID = 0,
  EN_SSS_NA = 1,
  EN_SSS_NOSIGNAL = 2,
  EN_SSS_SIGNAL_LINK = 3,
  EN_SSS_UNSTABLE = 4,
};

enum en_input_group_t : uint8_t {
  EN_INPUT_A = 0,
  EN_INPUT_B = 1,
  EN_INPUT_C = 2,
  EN_INPUT_D = 3,
  EN_INPUT_E = 4,
  EN_INPUT_F = 5,
  EN_INPUT_G = 6,
  EN_INPUT_H = 7,
  EN_INPUT_I = 8,
  EN_INPUT_INVALID = 255,
};

enum en_fpga_input_ch_t : uint8_t {
  EN_FPGA_IN_CH1 = 0,
  EN_FPGA_IN_CH2 = 1,
  EN_FPGA_IN_CH3 = 2,
  EN_FPGA_IN_CH4 = 3,
  EN_FPGA_IN_CH5 = 4,
  EN_FPGA_IN_CH6 = 5,
  EN_FPGA_IN_UDISK = 6,
  EN_FPGA_IN_OPT = 7,
  EN_FPGA_IN_MOSAIC = 8,
  EN_FPGA_IN_CH_INVALID = 255,
};

// The high nibble of a source code; the low one counts.
enum en_source_type_t : uint8_t {
  EN_ST_DVI = 0,
  EN_ST_VGA = 2,
  EN_ST_SDI = 3,
  EN_ST_DL_DVI = 5,
  EN_ST_HDMI1_4 = 6,
  EN_ST_UDISK = 10,
};

// The first source of a type.
enum en_source_code_t : uint8_t {
  EN_SC_DVI_1 = 0x00,
  EN_SC_VGA_1 = 0x20,
  EN_SC_SDI_1 = 0x30,
  EN_SC_DL_DVI_1 = 0x50,
  EN_SC_HDMI1_4_1 = 0x60,
  EN_SC_UDISK_1 = 0xA0,
};

constexpr uint8_t SourceType(uint8_t code) { return code >> 4; }

// What was measured last; the period is that of a frame in microseconds.
struct input_source_res_t {
  uint8_t is_stable;
  uint16_t h_active;
  uint16_t v_active;
  uint16_t v_period_us;
};

struct source_t {
  en_source_signal_state_t signal_state;
  en_input_group_t group;
  uint8_t src_code;  // an en_source_code_t plus a number
  en_fpga_input_ch_t input_ch;
  uint16_t id;  // of the input board
  input_source_res_t res;
};

struct inputsource_name_t {
  uint8_t sourceCode;
  uint8_t cardNO;   // the group
  uint8_t lenName;  // characters of the name
  std::array<char, 126> name;
};

// The FPGA's channel for the board `id`; EN_FPGA_IN_CH_INVALID for one outside the table.
en_fpga_input_ch_t ChannelOfBoard(uint16_t id);

// The group that a client means by the input source ID in feature register 0x1A5, and the ID that
// stands for a group; 0 for a group that has none.
uint8_t GroupOfSourceId(uint8_t source_id);
uint8_t SourceIdOfGroup(uint8_t group);
inline constexpr uint8_t kReachableGroups = 3;

// --- The stored modes ---------------------------------------------------------------------------

struct InResPara_T {
  uint16_t InResHor;    // pixels
  uint16_t InResVer;    // lines
  uint16_t InResFrame;  // 0.01 Hz
};

struct InPlusPara_T {
  uint8_t Limit2Full;
  uint8_t HdcpOn;
};

inline constexpr std::size_t kInputGroups = 9;

// The settings of all groups. Only `InRes` has an effect; `InPlus` is stored along.
struct InSetPara_T {
  std::array<InResPara_T, kInputGroups> InRes;
  std::array<InPlusPara_T, kInputGroups> InPlus;
};

inline constexpr std::size_t kInSetParaSize = 72;
using InSetParaBytes = std::array<uint8_t, kInSetParaSize>;

InSetParaBytes PackInSetPara(const InSetPara_T& para);
InSetPara_T UnpackInSetPara(std::span<const uint8_t, kInSetParaSize> bytes);

// --- The measured signal ------------------------------------------------------------------------

// What the FPGA measures of an input. `frame_rate` is the period of a frame in microseconds.
struct fpag_in_res_reg_t {
  uint8_t seq_num;
  uint8_t interlace_mode;
  uint8_t timing_state;
  uint16_t active_width;
  uint16_t active_height;
  uint16_t frame_rate;
  uint16_t det_de_cnt_rise;
  uint16_t det_de_cnt_fall;
  uint8_t fram_attribute;
};

// Takes a measurement into the source. Whether something changed that a picture depends on.
bool TakeMeasurement(const fpag_in_res_reg_t& measured, source_t* source);

}  // namespace ZEPH_MCUC
