// The scaler pair: worked windows, the cut of a layer, filters, and the bytes of both register
// images.
#include "process/scaler.h"

#include <gtest/gtest.h>

#include <array>

#include "process/scaler_lut.h"
#include "support/inprocess.h"

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
  EXPECT_EQ(in.h_ratio, (1919U << 16) / 959);
  EXPECT_EQ(out.h_ratio, 0x10000U);
  EXPECT_EQ(in.scaler_en & out.scaler_en, 1);
  EXPECT_EQ(in.source_sel, 2);
  EXPECT_EQ(out.priority, 5);
  EXPECT_EQ(in.coeff_lut | out.coeff_lut, 0) << "low quality looks nothing up";
  EXPECT_EQ(in.mem_start_addr, 0x07C00000U);
  EXPECT_EQ(out.mem_start_addr, 0x07C00000U);

  const auto [valid, reason, twice] = Calculate(1, {10, 20, 960, 540}, kScreen, kScreen);
  ASSERT_TRUE(valid);
  EXPECT_EQ(twice.scaler_in.h_ratio, 0x10000U);
  EXPECT_EQ(twice.scaler_in.vin_start_h_pos, 10);
  EXPECT_EQ(twice.scaler_in.vin_start_v_pos, 20);
  EXPECT_EQ(twice.scaler_out.vin_h_disp, 960);
  EXPECT_EQ(twice.scaler_out.vout_h_disp, 1920);
  EXPECT_EQ(twice.scaler_in.coeff_lut, 0x00);
  EXPECT_EQ(twice.scaler_out.coeff_lut, 0xAA) << "2.0 lies below 2.25";
  EXPECT_EQ(twice.scaler_in.mem_start_addr, 1U << 24);

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
  };
  constexpr pos_t kAtLeft{INT32_MIN, 0, 100, 100}, kAtRight{INT32_MAX, 0, 9, 9};
  constexpr Case kCases[] = {
      {"off", kScreen, kScreen, kScreen, 0, EN_RET_SUCCESS},
      {"neither on nor off", kScreen, kScreen, kScreen, 2, EN_RET_SUCCESS},
      {"no source", {0, 0, 0, 1080}, kScreen, kScreen, 1, EN_RET_ALG_ERROR},
      {"source of a column", {0, 0, 1, 1080}, kScreen, kScreen, 1, EN_RET_ALG_ERROR},
      {"negative", kScreen, {0, 0, -5, 1080}, kScreen, 1, EN_RET_ALG_ERROR},
      {"left of it", kScreen, {-100, 0, 100, 100}, kScreen, 1, EN_RET_POS_ERROR},
      {"below it", kScreen, {0, 1080, 100, 100}, kScreen, 1, EN_RET_POS_ERROR},
      {"far away", kScreen, kAtLeft, kAtRight, 1, EN_RET_POS_ERROR},
      {"no region", kScreen, kScreen, {0, 0, 0, 1080}, 1, EN_RET_POS_ERROR},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.what);
    const Pair pair = Calculate(3, c.source, c.layer, c.output, c.ctrl);
    EXPECT_EQ(pair.reason, c.reason);
    EXPECT_EQ(pair.valid, c.reason == EN_RET_SUCCESS);
    EXPECT_EQ(pair.images.scaler_in.scaler_en, 0);
    EXPECT_EQ(pair.images.scaler_in.source_sel, 2);
    EXPECT_EQ(pair.images.scaler_out.scaler_en, 0);
    EXPECT_EQ(pair.images.scaler_out.priority, c.reason == EN_RET_ALG_ERROR ? 0 : 5);
  }
}

// A layer of its source's own size in a region of 200 by 200: which of its pixels show, and where.
TEST(Scaler, CutsALayerToItsRegion) {
  struct Case {
    int place, size;
    int from, shown, at;
  };
  constexpr Case kCases[] = {{0, 100, 0, 100, 0},
                             {-30, 100, 30, 70, 0},
                             {150, 100, 0, 50, 150},
                             {-30, 300, 30, 200, 0},
                             {50, 100, 0, 100, 50}};
  for (const Case& c : kCases) {
    SCOPED_TRACE(testing::Message() << c.place << ' ' << c.size);
    const Pair pair =
        Calculate(3, {0, 0, c.size, c.size}, {c.place, c.place, c.size, c.size}, {0, 0, 200, 200});
    ASSERT_TRUE(pair.valid);
    const auto& out = pair.images.scaler_out;
    EXPECT_EQ((std::array<int, 3>{out.vin_start_h_pos, out.vout_h_disp, out.vout_start_h_pos}),
              (std::array{c.from, c.shown, c.at}));
    EXPECT_EQ((std::array<int, 3>{out.vin_start_v_pos, out.vout_v_disp, out.vout_start_v_pos}),
              (std::array{c.from, c.shown, c.at}));
  }
}

// The filters in front and behind for each pair of ratios, a dash for one that is kept.
std::string Filters(en_lut_process_mode mode, const std::vector<std::pair<float, float>>& ratios) {
  constexpr uint8_t kKept = 99;
  const auto text = [](uint8_t filter) { return filter == kKept ? "-" : std::to_string(filter); };
  std::string filters;
  for (const auto& [front, behind] : ratios) {
    uint8_t in = kKept, out = kKept;
    find_lut_param(mode, front, behind, &in, &out);
    filters += text(in) + ":" + text(out) + " ";
  }
  return filters;
}

TEST(Scaler, FiltersByRatio) {
  constexpr auto k1 = EN_LUT_PROCESS_1;
  constexpr auto k2 = EN_LUT_PROCESS_2;
  // Enlarged behind: bounds are part of their row.
  EXPECT_EQ(Filters(k1, {{1, 1.1F}, {1, 1.25F}, {1, 1.26F}, {1, 3}, {1, 15}, {1, 255}, {1, 256}}),
            "0:8 0:8 0:9 0:11 0:14 0:15 0:- ");
  EXPECT_EQ(Filters(k2, {{1, 1.25F}, {1, 1.26F}, {1, 5}, {1, 655}, {1, 656}}),
            "0:8 0:9 0:12 0:15 0:- ");
  // Shrunk in front, strongly: bounds are part of the next row of the first table; then lightly.
  EXPECT_EQ(Filters(k1, {{0.1F, 1},
                         {0.2F, 1},
                         {0.499F, 1},
                         {0.5F, 1},
                         {0.7F, 1},
                         {0.75F, 1},
                         {0.79F, 1},
                         {0.8F, 1},
                         {0.849F, 1},
                         {0.85F, 1},
                         {1, 1}}),
            "7:0 7:0 7:10 6:10 6:10 6:9 6:8 1:0 1:0 0:0 0:0 ");
  EXPECT_EQ(Filters(k2, {{0.29F, 1}, {0.3F, 1}, {0.7F, 1}, {0.84F, 1}, {1, 1}}),
            "7:0 6:0 2:0 1:0 0:0 ");
  // No rule.
  EXPECT_EQ(Filters(k1, {{0.5F, 2}, {1.5F, 1}}), "-:- -:- ");
  EXPECT_EQ(Filters(k2, {{1, 0.5F}}), "-:- ");
  EXPECT_EQ(Filters(EN_LUT_PROCESS_ERR, {{1, 2}}), "-:- ");
}

TEST(Scaler, ImagesByteForByte) {
  const auto packed = [](const auto& image, const auto& record) {
    const auto bytes = image.Pack(record);
    return std::vector<uint8_t>(bytes.begin(), bytes.end());
  };
  // What both begin with.
  const std::string common =
      "01 78563412 89674523 9a785634 ab896745 7856 8967 9a78 ab89 bc9a cdab bc cd f0de 452301ef ";
  const fpga_in_scaler_param_t in{0x01,   0x12345678, 0x23456789, 0x3456789A, 0x456789AB, 0x5678,
                                  0x6789, 0x789A,     0x89AB,     0x9ABC,     0xABCD,     0xBC,
                                  0xCD,   0xDEF0,     0xEF012345, 0x42};
  EXPECT_EQ(packed(kInScalerImage, in), inprocess::Bytes((common + "42").c_str()));
  const auto bytes = kInScalerImage.Pack(in);
  EXPECT_EQ(kInScalerImage.Pack(kInScalerImage.Unpack(bytes)), bytes);
  const fpga_out_scaler_param_t out{0x01,   0x12345678, 0x23456789, 0x3456789A, 0x456789AB, 0x5678,
                                    0x6789, 0x789A,     0x89AB,     0x9ABC,     0xABCD,     0xBC,
                                    0xCD,   0xDEF0,     0xEF012345, 0x1357,     0x2468,     0x99};
  EXPECT_EQ(packed(kOutScalerImage, out), inprocess::Bytes((common + "5713 6824 99").c_str()));
}

}  // namespace
}  // namespace ZEPH_MCUC
