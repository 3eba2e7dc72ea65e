#include "process/cvt_modes.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace ZEPH_MCUC {
namespace {

constexpr int kRateTolerance = 4;  // 0.1 Hz

constexpr Resolution g_resolution_input[] = {
    {640, 400},   {720, 400},   {848, 480},   {640, 480},   {800, 600},   {1280, 720},
    {1366, 768},  {1280, 768},  {1360, 768},  {1024, 768},  {1280, 800},  {1152, 864},
    {1440, 900},  {1280, 960},  {1280, 1024}, {1680, 1050}, {1400, 1050}, {1920, 1080},
    {1920, 1200}, {2048, 1152}, {1600, 1200}, {3840, 2160},
};

struct NamedMode {
  EN_MODE_TYPE mode;
  const char* name;
};

#define NAME(mode) \
  { mode, #mode }
constexpr NamedMode kNames[] = {
    NAME(MD_640X400_85),     NAME(MD_640X480_60),   NAME(MD_640X480_73),
    NAME(MD_640X480_75),     NAME(MD_640X480_85),   NAME(MD_720X400_85),
    NAME(MD_800X600_56),     NAME(MD_800X600_60),   NAME(MD_800X600_72),
    NAME(MD_800X600_75),     NAME(MD_800X600_85),   NAME(MD_800X600_120RB),
    NAME(MD_848X480_60),     NAME(MD_1024X768_60),  NAME(MD_1024X768_70),
    NAME(MD_1024X768_75RB),  NAME(MD_1024X768_85),  NAME(MD_1024X768_120RB),
    NAME(MD_1152X864_75),    NAME(MD_1280X720_60),  NAME(MD_1280X768_60),
    NAME(MD_1280X768_60RB),  NAME(MD_1280X768_75),  NAME(MD_1280X768_85),
    NAME(MD_1280X768_120RB), NAME(MD_1280X800_60),  NAME(MD_1280X800_60RB),
    NAME(MD_1280X800_75),    NAME(MD_1280X800_85),  NAME(MD_1280X800_120RB),
    NAME(MD_1280X960_60),    NAME(MD_1280X960_85),  NAME(MD_1280X1024_60),
    NAME(MD_1280X1024_75),   NAME(MD_1280X1024_85), NAME(MD_1360X768_60),
    NAME(MD_1360X768_120RB), NAME(MD_1366X768_60),  NAME(MD_1366X768_60RB),
    NAME(MD_1400X1050_60RB), NAME(MD_1400X1050_60), NAME(MD_1400X1050_75),
    NAME(MD_1440X900_60RB),  NAME(MD_1440X900_60),  NAME(MD_1440X900_75),
    NAME(MD_1440X900_85),    NAME(MD_1600X1200_60), NAME(MD_1680X1050_60RB),
    NAME(MD_1680X1050_60),   NAME(MD_1920X1080_60), NAME(MD_1920X1200_60RB),
    NAME(MD_2048X1152_60RB), NAME(MD_3840X2160_60), NAME(MD_800X600_50),
};
#undef NAME

constexpr bool InOrder() {
  for (std::size_t i = 0; i < std::size(kNames); ++i) {
    if (kNames[i].mode != i) return false;
  }
  return std::size(kNames) == MODE_TYPE_NUM;
}
static_assert(InOrder());

// Resolution; h_freq, v_freq; totals; blanking, sync and start of a line; the same of a frame.
// A search takes the first row that fits: the order matters.
constexpr mode_table_t g_timing_table_input[] = {
    {RES_640X400, 379, 851, 832, 445, 192, 64, 160, 45, 3, 44, 0},
    {RES_640X480, 315, 599, 800, 525, 144, 96, 136, 29, 2, 27, 0},
    {RES_640X480, 379, 728, 832, 520, 176, 40, 160, 24, 3, 23, 0},
    {RES_640X480, 375, 750, 840, 500, 200, 64, 184, 20, 3, 19, 0},
    {RES_640X480, 433, 850, 832, 509, 192, 56, 136, 29, 3, 28, 0},
    {RES_720X400, 379, 850, 936, 446, 216, 72, 180, 46, 3, 45, 0},
    {RES_800X600, 352, 563, 1024, 625, 224, 72, 200, 25, 2, 24, 0},
    {RES_800X600, 379, 603, 1056, 628, 256, 128, 216, 28, 4, 27, 0},
    {RES_800X600, 481, 722, 1040, 666, 256, 120, 184, 66, 6, 29, 0},
    {RES_800X600, 469, 750, 1056, 625, 240, 80, 240, 25, 3, 24, 0},
    {RES_800X600, 537, 851, 1048, 631, 248, 64, 216, 31, 3, 30, 0},
    {RES_800X600, 763, 1200, 960, 636, 160, 32, 112, 36, 4, 33, 0},
    {RES_848X480, 310, 600, 1088, 517, 240, 112, 224, 37, 8, 31, 0},
    {RES_1024X768, 484, 600, 1344, 806, 320, 136, 296, 38, 6, 35, 0},
    {RES_1024X768, 565, 701, 1328, 806, 304, 136, 280, 38, 6, 35, 0},
    {RES_1024X768, 600, 750, 1312, 800, 288, 96, 272, 32, 3, 31, 0},
    {RES_1024X768, 687, 850, 1376, 808, 352, 96, 304, 40, 3, 39, 0},
    {RES_1024X768, 976, 1200, 1184, 813, 160, 32, 112, 45, 4, 42, 0},
    {RES_1152X864, 675, 750, 1600, 900, 448, 128, 384, 36, 3, 35, 0},
    {RES_1280X720, 450, 600, 1650, 750, 370, 40, 260, 30, 5, 25, 0},
    {RES_1280X768, 478, 599, 1664, 798, 384, 128, 320, 30, 7, 27, 0},
    {RES_1280X768, 474, 600, 1440, 790, 160, 32, 112, 22, 7, 19, 0},
    {RES_1280X768, 603, 749, 1696, 805, 416, 128, 336, 37, 7, 34, 0},
    {RES_1280X768, 686, 848, 1712, 809, 432, 136, 352, 41, 7, 38, 0},
    {RES_1280X768, 974, 1198, 1440, 813, 160, 32, 112, 45, 7, 42, 0},
    {RES_1280X800, 497, 598, 1680, 831, 400, 128, 328, 31, 6, 28, 0},
    {RES_1280X800, 493, 599, 1440, 823, 160, 32, 112, 23, 6, 20, 0},
    {RES_1280X800, 628, 749, 1696, 838, 416, 128, 336, 38, 6, 35, 0},
    {RES_1280X800, 716, 849, 1712, 843, 432, 136, 352, 43, 6, 40, 0},
    {RES_1280X800, 1016, 1199, 1440, 847, 160, 32, 112, 47, 6, 44, 0},
    {RES_1280X960, 600, 600, 1800, 1000, 520, 112, 424, 40, 3, 39, 0},
    {RES_1280X960, 859, 850, 1728, 1011, 448, 160, 384, 51, 3, 50, 0},
    {RES_1280X1024, 640, 600, 1688, 1066, 408, 112, 360, 42, 3, 41, 0},
    {RES_1280X1024, 800, 750, 1688, 1066, 408, 144, 392, 42, 3, 41, 0},
    {RES_1280X1024, 911, 850, 1728, 1072, 448, 160, 384, 48, 3, 47, 0},
    {RES_1360X768, 477, 600, 1792, 795, 432, 112, 368, 27, 6, 24, 0},
    {RES_1360X768, 975, 1200, 1520, 813, 160, 32, 112, 45, 5, 42, 0},
    {RES_1366X768, 477, 598, 1792, 798, 426, 143, 356, 30, 3, 27, 0},
    {RES_1366X768, 480, 600, 1500, 800, 134, 56, 120, 32, 3, 31, 0},
    {RES_1400X1050, 647, 599, 1560, 1080, 160, 32, 112, 30, 4, 27, 0},
    {RES_1400X1050, 653, 600, 1864, 1089, 464, 144, 376, 39, 4, 36, 0},
    {RES_1400X1050, 823, 749, 1896, 1099, 496, 144, 392, 49, 4, 46, 0},
    {RES_1440X900, 555, 599, 1600, 926, 160, 32, 112, 26, 6, 23, 0},
    {RES_1440X900, 559, 599, 1904, 934, 464, 152, 384, 34, 6, 31, 0},
    {RES_1440X900, 706, 750, 1936, 942, 496, 152, 400, 42, 6, 39, 0},
    {RES_1440X900, 804, 848, 1952, 948, 512, 152, 408, 48, 6, 45, 0},
    {RES_1600X1200, 750, 600, 2160, 1250, 560, 192, 496, 50, 3, 49, 0},
    {RES_1680X1050, 647, 599, 1840, 1080, 160, 32, 112, 30, 6, 27, 0},
    {RES_1680X1050, 653, 600, 2240, 1089, 560, 176, 456, 39, 6, 36, 0},
    {RES_1920X1080, 675, 600, 2200, 1125, 280, 44, 192, 45, 5, 41, 0},
    {RES_1920X1200, 740, 600, 2080, 1235, 160, 32, 112, 35, 6, 32, 0},
    {RES_2048X1152, 720, 600, 2250, 1200, 202, 80, 176, 48, 3, 47, 0},
    {RES_3840X2160, 1350, 600, 4400, 2250, 560, 88, 384, 90, 10, 82, 0},
    {RES_800X600, 308, 500, 960, 615, 160, 32, 112, 15, 4, 12, 0},
};
static_assert(std::size(g_timing_table_input) == MODE_TYPE_NUM);

}  // namespace

std::span<const Resolution> Resolutions() { return g_resolution_input; }

std::span<const mode_table_t> Modes() { return g_timing_table_input; }

const char* ModeName(EN_MODE_TYPE mode) {
  return mode < MODE_TYPE_NUM ? kNames[mode].name : "INVALID_MODE";
}

EN_MODE_TYPE FindMode(uint16_t width, uint16_t height, uint16_t frame_rate_x10) {
  const auto* const found = std::find_if(
      std::begin(g_resolution_input), std::end(g_resolution_input),
      [=](const Resolution& size) { return size.width == width && size.height == height; });
  const auto resolution = found - std::begin(g_resolution_input);
  for (std::size_t i = 0; i < std::size(g_timing_table_input); ++i) {
    const mode_table_t& row = g_timing_table_input[i];
    const int distance = std::abs(int{row.v_freq} - int{frame_rate_x10});
    if (row.en_res_idx == resolution && distance <= kRateTolerance) {
      return static_cast<EN_MODE_TYPE>(i);
    }
  }
  return INVALID_MODE;
}

}  // namespace ZEPH_MCUC
