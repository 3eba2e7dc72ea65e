// The scaler pair: worked windows, the cut of a layer against counted pixels, filters, and the
// bytes of both register images.
#include "process/scaler.h"

#include <gtest/gtest.h>

#include "process/scaler_lut.h"
#include "support/rounds.h"
#include "support/slow_split.h"

namespace ZEPH_MCUC {
namespace {

constexpr pos_t kScreen{0, 0, 1920, 1080};

struct Pair {
  bool valid;
  en_scaler_calc_ret reason;
  scaler_cal_param_t images;
};

Pair Calculate(uint8_t scaler, const pos_t& source, const pos_t& layer, const pos_t& output,
               uint8_t ctrl = 1) {
  const scaler_pair_param_t request{ctrl, 2, 5, source, layer, output};
  Pair pair{};
  pair.valid = ScalerPairConfig(scaler, &request, &pair.images, &pair.reason);
  return pair;
}

TEST(Scaler, ShrinksInFrontAndEnlargesBehind) {
  const Pair half = Calculate(3, kScreen, {0, 0, 960, 540}, kScreen);
  ASSERT_TRUE(half.valid);
  const auto& in = half.images.scaler_in;
  const auto& out = half.images.scaler_out;
  EXPECT_EQ(in.scaler_en, 1);
  EXPECT_EQ(in.h_ratio, (1919U << 16) / 959);
  EXPECT_EQ(in.v_ratio, (1079U << 16) / 539);
  EXPECT_EQ(in.vin_h_disp, 1920);
  EXPECT_EQ(in.vout_h_disp, 960);
  EXPECT_EQ(in.source_sel, 2);
  EXPECT_EQ(out.h_ratio, 0x10000U);
  EXPECT_EQ(out.vout_h_disp, 960);
  EXPECT_EQ(out.priority, 5);
  EXPECT_EQ(in.coeff_lut | out.coeff_lut, 0) << "low quality looks nothing up";
  EXPECT_EQ(in.mem_start_addr, 0x07C00000U);
  EXPECT_EQ(out.mem_start_addr, 0x07C00000U);

  const Pair twice = Calculate(1, {10, 20, 960, 540}, kScreen, kScreen);
  ASSERT_TRUE(twice.valid);
  EXPECT_EQ(twice.images.scaler_in.h_ratio, 0x10000U);
  EXPECT_EQ(twice.images.scaler_in.vout_h_disp, 960);
  EXPECT_EQ(twice.images.scaler_in.vin_start_h_pos, 10);
  EXPECT_EQ(twice.images.scaler_in.vin_start_v_pos, 20);
  EXPECT_EQ(twice.images.scaler_out.vin_h_disp, 960);
  EXPECT_EQ(twice.images.scaler_out.vout_h_disp, 1920);
  EXPECT_EQ(twice.images.scaler_in.coeff_lut, 0x00);
  EXPECT_EQ(twice.images.scaler_out.coeff_lut, 0xAA) << "2.0 lies below 2.25";
  EXPECT_EQ(twice.images.scaler_in.mem_start_addr, 1U << 24);

  const Pair both = Calculate(0, {0, 0, 1920, 540}, {0, 0, 960, 1080}, kScreen);
  EXPECT_EQ(both.images.scaler_in.coeff_lut, 0x06) << "0.5 is not below 0.5";
  EXPECT_EQ(both.images.scaler_out.coeff_lut, 0xAA) << "0.5 and 2.0";
}

TEST(Scaler, OffAndRefused) {
  struct Case {
    const char* what;
    pos_t source, layer, output;
    uint8_t ctrl;
    en_scaler_calc_ret reason;
    int in_enabled, out_priority;
  };
  constexpr Case kCases[] = {
      {"off", kScreen, kScreen, kScreen, 0, EN_RET_SUCCESS, 0, 5},
      {"neither on nor off", kScreen, kScreen, kScreen, 2, EN_RET_SUCCESS, 0, 5},
      {"no source", {0, 0, 0, 1080}, kScreen, kScreen, 1, EN_RET_ALG_ERROR, 0, 0},
      {"no source lines", {0, 0, 1920, 0}, kScreen, kScreen, 1, EN_RET_ALG_ERROR, 0, 0},
      {"source of a column", {0, 0, 1, 1080}, kScreen, kScreen, 1, EN_RET_ALG_ERROR, 0, 0},
      {"layer of a column", kScreen, {0, 0, 1, 1080}, kScreen, 1, EN_RET_ALG_ERROR, 0, 0},
      {"negative", kScreen, {0, 0, -5, 1080}, kScreen, 1, EN_RET_ALG_ERROR, 0, 0},
      {"right of it", kScreen, {1920, 0, 100, 100}, kScreen, 1, EN_RET_POS_ERROR, 0, 5},
      {"left of it", kScreen, {-100, 0, 100, 100}, kScreen, 1, EN_RET_POS_ERROR, 0, 5},
      {"below it", kScreen, {0, 1080, 100, 100}, kScreen, 1, EN_RET_POS_ERROR, 0, 5},
      {"above it", kScreen, {0, -100, 100, 100}, kScreen, 1, EN_RET_POS_ERROR, 0, 5},
      {"far away",
       kScreen,
       {INT32_MIN, 0, 100, 100},
       {INT32_MAX, 0, 9, 9},
       1,
       EN_RET_POS_ERROR,
       0,
       5},
      {"no region", kScreen, kScreen, {0, 0, 0, 1080}, 1, EN_RET_POS_ERROR, 0, 5},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.what);
    const Pair pair = Calculate(3, c.source, c.layer, c.output, c.ctrl);
    EXPECT_EQ(pair.reason, c.reason);
    EXPECT_EQ(pair.valid, c.reason == EN_RET_SUCCESS);
    EXPECT_EQ(pair.images.scaler_in.scaler_en, c.in_enabled);
    EXPECT_EQ(pair.images.scaler_in.source_sel, 2);
    EXPECT_EQ(pair.images.scaler_out.scaler_en, 0);
    EXPECT_EQ(pair.images.scaler_out.priority, c.out_priority);
  }
}

// One axis by counting the layer's pixels in front of the region, inside and behind.
struct Counted {
  unsigned before = 0, inside = 0, behind = 0;
  int out_start = 0;
};

Counted CountPixels(int layer, int layer_size, int region, int region_size) {
  Counted counted;
  for (int at = layer; at < layer + layer_size; ++at) {
    if (at < region) {
      ++counted.before;
    } else if (at < region + region_size) {
      ++counted.inside;
    } else {
      ++counted.behind;
    }
  }
  counted.out_start = layer > region ? layer - region : 0;
  return counted;
}

struct Axis {
  uint32_t ratio, phase;
  uint16_t in, out, in_start, out_start;
  bool operator==(const Axis&) const = default;
};

// What both scalers do on one axis, in the slow form.
void SlowAxis(unsigned source, unsigned layer, const Counted& cut, unsigned left, unsigned right,
              Axis* front, Axis* back) {
  slow_split::Cell cell{};
  ASSERT_TRUE(
      (slow_split::Front{source, layer, 0, source, 0, 0, left, right, true, true, false}.Calculate(
          &cell)));
  *front = {cell.Step, cell.Phase, uint16_t(cell.InSize), uint16_t(cell.OutSize), 0, 0};
  const slow_split::Back request{cell.OutSize, layer, cut.before,      cut.inside,      left,
                                 right,        0,     cut.before == 0, cut.behind == 0, false,
                                 false};
  ASSERT_TRUE(request.Calculate(&cell));
  *back = {cell.Step,
           cell.Phase,
           uint16_t(cell.InSize),
           uint16_t(cell.OutSize),
           uint16_t(cell.InStart),
           uint16_t(cut.out_start)};
}

TEST(Scaler, AgreesWithCountedPixelsOnRandomRectangles) {
  support::Random random(87);
  for (int i = support::Rounds(20000); i > 0 && !HasFatalFailure(); --i) {
    const auto scaler = uint8_t(random(0, 4));
    const pos_t source{0, 0, random(2, 300), random(2, 300)};
    const pos_t layer{random(-200, 200), random(-200, 200), random(2, 300), random(2, 300)};
    const pos_t output{random(-200, 200), random(-200, 200), random(1, 300), random(1, 300)};
    const Counted x = CountPixels(layer.x, layer.width, output.x, output.width);
    const Counted y = CountPixels(layer.y, layer.height, output.y, output.height);
    const Pair pair = Calculate(scaler, source, layer, output);
    ASSERT_EQ(pair.valid, x.inside != 0 && y.inside != 0);
    if (!pair.valid) continue;
    const auto& in = pair.images.scaler_in;
    const auto& out = pair.images.scaler_out;
    const unsigned reach = scaler < 3 ? 1 : 0;
    Axis front, back;
    SlowAxis(unsigned(source.width), unsigned(layer.width), x, reach, reach + 1, &front, &back);
    ASSERT_EQ(
        (Axis{in.h_ratio, in.init_h_phase, in.vin_h_disp, in.vout_h_disp, in.vin_start_h_pos, 0}),
        front);
    ASSERT_EQ((Axis{out.h_ratio, out.init_h_phase, out.vin_h_disp, out.vout_h_disp,
                    out.vin_start_h_pos, out.vout_start_h_pos}),
              back);
    SlowAxis(unsigned(source.height), unsigned(layer.height), y, reach, reach + 1, &front, &back);
    ASSERT_EQ(
        (Axis{in.v_ratio, in.init_v_phase, in.vin_v_disp, in.vout_v_disp, in.vin_start_v_pos, 0}),
        front);
    ASSERT_EQ((Axis{out.v_ratio, out.init_v_phase, out.vin_v_disp, out.vout_v_disp,
                    out.vin_start_v_pos, out.vout_start_v_pos}),
              back);
  }
}

TEST(Scaler, FiltersByRatio) {
  constexpr uint8_t kKept = 99;
  struct Case {
    en_lut_process_mode mode;
    float in, out;
    uint8_t in_filter, out_filter;
  };
  constexpr auto k1 = EN_LUT_PROCESS_1;
  constexpr auto k2 = EN_LUT_PROCESS_2;
  constexpr Case kCases[] = {
      // Enlarged behind: bounds are part of their row.
      {k1, 1, 1.1F, 0, 8},
      {k1, 1, 1.25F, 0, 8},
      {k1, 1, 1.26F, 0, 9},
      {k1, 1, 3.0F, 0, 11},
      {k1, 1, 15.0F, 0, 14},
      {k1, 1, 255.0F, 0, 15},
      {k1, 1, 256.0F, 0, kKept},
      {k2, 1, 1.25F, 0, 8},
      {k2, 1, 1.26F, 0, 9},
      {k2, 1, 5.0F, 0, 12},
      {k2, 1, 655.0F, 0, 15},
      {k2, 1, 656.0F, 0, kKept},
      // Shrunk in front, strongly: bounds are part of the next row of the first table.
      {k1, 0.1F, 1, 7, 0},
      {k1, 0.2F, 1, 7, 0},
      {k1, 0.499F, 1, 7, 10},
      {k1, 0.5F, 1, 6, 10},
      {k1, 0.7F, 1, 6, 10},
      {k1, 0.75F, 1, 6, 9},
      {k1, 0.79F, 1, 6, 8},
      {k1, 0.8F, 1, 1, 0},
      // And lightly, or with one table for all.
      {k1, 0.849F, 1, 1, 0},
      {k1, 0.85F, 1, 0, 0},
      {k1, 1, 1, 0, 0},
      {k2, 0.29F, 1, 7, 0},
      {k2, 0.3F, 1, 6, 0},
      {k2, 0.7F, 1, 2, 0},
      {k2, 0.84F, 1, 1, 0},
      {k2, 1, 1, 0, 0},
      // No rule.
      {k1, 0.5F, 2, kKept, kKept},
      {k1, 1.5F, 1, kKept, kKept},
      {k2, 1, 0.5F, kKept, kKept},
      {EN_LUT_PROCESS_ERR, 1, 2, kKept, kKept},
  };
  for (const Case& c : kCases) {
    uint8_t in = kKept, out = kKept;
    find_lut_param(c.mode, c.in, c.out, &in, &out);
    EXPECT_EQ(in, c.in_filter) << c.in << " " << c.out;
    EXPECT_EQ(out, c.out_filter) << c.in << " " << c.out;
  }

  lut_param_t sizes{EN_LUT_SCALER_MQ, EN_LUT_SCALER_LQ, 100, 50, 100, 100, 50, 50, 100, 200};
  uint8_t in = kKept, out = kKept;
  get_scaler_lut(&sizes, &in, &out);
  EXPECT_EQ(in, 0x04);
  EXPECT_EQ(out, 0xA0) << "twice as high";
  sizes.in_scaler_in_width = 0;
  get_scaler_lut(&sizes, &in, &out);
  EXPECT_EQ(in, 0x00) << "an axis without input has no filter";
  sizes.in_scaler_mode = EN_LUT_SCALER_HQ;
  in = out = kKept;
  get_scaler_lut(&sizes, &in, &out);
  EXPECT_EQ(in, kKept);
  EXPECT_EQ(out, kKept);
}

template <class Bytes>
std::string Hex(const Bytes& bytes) {
  std::string text;
  for (const uint8_t byte : bytes) {
    char digits[3];
    std::snprintf(digits, sizeof(digits), "%02x", byte);
    text += digits;
  }
  return text;
}

TEST(Scaler, ImagesByteForByte) {
  const fpga_in_scaler_param_t in{0x01,   0x12345678, 0x23456789, 0x3456789A, 0x456789AB, 0x5678,
                                  0x6789, 0x789A,     0x89AB,     0x9ABC,     0xABCD,     0xBC,
                                  0xCD,   0xDEF0,     0xEF012345, 0x42};
  const auto bytes = kInScalerImage.Pack(in);
  EXPECT_EQ(Hex(bytes),
            "01"
            "78563412"
            "89674523"
            "9a785634"
            "ab896745"
            "7856"
            "8967"
            "9a78"
            "ab89"
            "bc9a"
            "cdab"
            "bc"
            "cd"
            "f0de"
            "452301ef"
            "42");
  EXPECT_EQ(kInScalerImage.Pack(kInScalerImage.Unpack(bytes)), bytes);

  const fpga_out_scaler_param_t out{0x01,   0x12345678, 0x23456789, 0x3456789A, 0x456789AB, 0x5678,
                                    0x6789, 0x789A,     0x89AB,     0x9ABC,     0xABCD,     0xBC,
                                    0xCD,   0xDEF0,     0xEF012345, 0x1357,     0x2468,     0x99};
  EXPECT_EQ(Hex(kOutScalerImage.Pack(out)),
            "01"
            "78563412"
            "89674523"
            "9a785634"
            "ab896745"
            "7856"
            "8967"
            "9a78"
            "ab89"
            "bc9a"
            "cdab"
            "bc"
            "cd"
            "f0de"
            "452301ef"
            "5713"
            "6824"
            "99");
}

}  // namespace
}  // namespace ZEPH_MCUC
