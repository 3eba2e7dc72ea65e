// The published timings that the device prefers over calculated ones, by resolution and rate.
//
// Pure and constant; any thread.
#pragma once

#include <cstdint>
#include <span>

namespace ZEPH_MCUC {

enum en_resolution_type_t : int32_t {
  RES_640X400 = 0,
  RES_720X400 = 1,
  RES_848X480 = 2,
  RES_640X480 = 3,
  RES_800X600 = 4,
  RES_1280X720 = 5,
  RES_1366X768 = 6,
  RES_1280X768 = 7,
  RES_1360X768 = 8,
  RES_1024X768 = 9,
  RES_1280X800 = 10,
  RES_1152X864 = 11,
  RES_1440X900 = 12,
  RES_1280X960 = 13,
  RES_1280X1024 = 14,
  RES_1680X1050 = 15,
  RES_1400X1050 = 16,
  RES_1920X1080 = 17,
  RES_1920X1200 = 18,
  RES_2048X1152 = 19,
  RES_1600X1200 = 20,
  RES_3840X2160 = 21,
};

// The rows of the mode table in their order. A name ends in the rate in Hz, RB is reduced blanking.
enum EN_MODE_TYPE : uint8_t {
  MD_640X400_85,
  MD_640X480_60,
  MD_640X480_73,
  MD_640X480_75,
  MD_640X480_85,
  MD_720X400_85,
  MD_800X600_56,
  MD_800X600_60,
  MD_800X600_72,
  MD_800X600_75,
  MD_800X600_85,
  MD_800X600_120RB,
  MD_848X480_60,
  MD_1024X768_60,
  MD_1024X768_70,
  MD_1024X768_75RB,
  MD_1024X768_85,
  MD_1024X768_120RB,
  MD_1152X864_75,
  MD_1280X720_60,
  MD_1280X768_60,
  MD_1280X768_60RB,
  MD_1280X768_75,
  MD_1280X768_85,
  MD_1280X768_120RB,
  MD_1280X800_60,
  MD_1280X800_60RB,
  MD_1280X800_75,
  MD_1280X800_85,
  MD_1280X800_120RB,
  MD_1280X960_60,
  MD_1280X960_85,
  MD_1280X1024_60,
  MD_1280X1024_75,
  MD_1280X1024_85,
  MD_1360X768_60,
  MD_1360X768_120RB,
  MD_1366X768_60,
  MD_1366X768_60RB,
  MD_1400X1050_60RB,
  MD_1400X1050_60,
  MD_1400X1050_75,
  MD_1440X900_60RB,
  MD_1440X900_60,
  MD_1440X900_75,
  MD_1440X900_85,
  MD_1600X1200_60,
  MD_1680X1050_60RB,
  MD_1680X1050_60,
  MD_1920X1080_60,
  MD_1920X1200_60RB,
  MD_2048X1152_60RB,
  MD_3840X2160_60,
  MD_800X600_50,
  MODE_TYPE_NUM,
  INVALID_MODE = 255,
};

struct Resolution {
  uint16_t width;   // pixels
  uint16_t height;  // lines
};

// A published timing. A start is the distance from where the sync begins to the first active pixel
// or line, so blanking less start is the front porch.
struct mode_table_t {
  en_resolution_type_t en_res_idx;
  uint16_t h_freq;  // 100 Hz
  uint16_t v_freq;  // 0.1 Hz
  uint16_t h_total;
  uint16_t v_total;
  uint16_t h_blanking;
  uint16_t h_sync;
  uint16_t h_start;
  uint16_t v_blanking;
  uint16_t v_sync;
  uint16_t v_start;
  uint8_t flag;  // 0
};
static_assert(sizeof(mode_table_t) == 28);

// All resolutions by en_resolution_type_t, all rows by EN_MODE_TYPE.
std::span<const Resolution> Resolutions();
std::span<const mode_table_t> Modes();

// The name of a row; "INVALID_MODE" for any other value.
const char* ModeName(EN_MODE_TYPE mode);

// The first row for exactly this size whose rate lies within 0.4 Hz of `frame_rate_x10`, in units
// of 0.1 Hz; INVALID_MODE where there is none.
EN_MODE_TYPE FindMode(uint16_t width, uint16_t height, uint16_t frame_rate_x10);

}  // namespace ZEPH_MCUC
