// Splits of an axis into cells: worked cells, refusals, and thousands of cells by their sum.
#include <gtest/gtest.h>

#include "process/scaler_split_porting_code.h"
#include "support/rounds.h"

namespace ZEPH_MCUC {
namespace {

using Front = DDR_FRONT_SPLIT_PARM_IN;
using Back = DDR_BACK_SPLIT_PARM_IN;

// What both give, in the order of both records: step, phase, sizes, starts, pixels beyond the cell.
using Cell = std::array<unsigned, 8>;
constexpr Cell kUntouched = {7, 7, 7, 7, 7, 7, 7, 7};

Cell Split(const Front& request) {
  DDR_FRONT_SPLIT_PARM_OUT out{7, 7, 7, 7, 7, 7, 7, 7};
  const auto result = DDRFrontSplit(&request, &out);
  const Cell cell = {out.OutFrontScalerHStep,    out.OutFrontScalerHInitPhase,
                     out.OutFrontScalerHInSize,  out.OutFrontScalerHOutSize,
                     out.OutSrcInHStartPos,      out.OutSrcOutHStartPos,
                     out.OutCellLeftExtraOutNum, out.OutCellRightExtraOutNum};
  EXPECT_EQ(result, cell == kUntouched ? TT_ERROR_FRONT_IN_PARM : TT_SPLIT_SUCCEED);
  return cell;
}

Cell Split(const Back& request) {
  DDR_BACK_SPLIT_PARM_OUT out{7, 7, 7, 7, 7, 7, 7, 7};
  const auto result = DDRBackSplit(&request, &out);
  const Cell cell = {out.OutBackScalerHStep,     out.OutBackScalerHInitPhase,
                     out.OutBackScalerHInSize,   out.OutBackScalerHOutSize,
                     out.OutBackInHStartPos,     out.OutBackOutHStartPos,
                     out.OutBackOutLeftUnVldNum, out.OutBackOutRightUnVldNum};
  EXPECT_EQ(result, cell == kUntouched ? TT_ERROR_FRONT_IN_PARM : TT_SPLIT_SUCCEED);
  return cell;
}

TEST(Split, WorkedCells) {
  const std::pair<Front, Cell> kFronts[] = {
      {{true, true, 1920, 960, 0, 1920, 0, 0, 0, 1, false}, {131140, 0, 1920, 960, 0, 0, 0, 0}},
      {{false, false, 3840, 1920, 1000, 1000, 4, 4, 1, 2, false},
       {131106, 82502, 1006, 502, 997, 499, 1, 1}},
      {{true, false, 3840, 1920, 0, 2000, 4, 4, 1, 2, false}, {131106, 0, 2003, 1001, 0, 0, 0, 1}},
      {{false, true, 3840, 1920, 2000, 1840, 4, 4, 1, 2, false},
       {131106, 99502, 1843, 921, 1997, 999, 1, 0}},
      {{true, true, 960, 1920, 0, 960, 0, 0, 0, 1, false}, {0x10000, 0, 960, 960, 0, 0, 0, 0}},
      {{false, false, 960, 1920, 100, 200, 4, 4, 1, 2, false},
       {0x10000, 0, 208, 208, 96, 96, 4, 4}},
      {{true, false, 1920, 1920, 0, 100, 0, 4, 1, 2, true}, {0x10000, 0, 104, 104, 0, 0, 0, 4}},
  };
  for (const auto& [front, wanted] : kFronts) EXPECT_EQ(Split(front), wanted);
  const std::pair<Back, Cell> kBacks[] = {
      {{false, false, 960, 1920, 500, 600, 1, 2, 0, false, false},
       {32750, 122072, 304, 600, 248, 500, 0, 0}},
      {{true, false, 960, 1920, 0, 600, 1, 2, 0, false, false}, {32750, 0, 302, 600, 0, 0, 0, 0}},
      {{false, true, 960, 1920, 1300, 620, 1, 2, 0, false, false},
       {32750, 107672, 312, 620, 648, 1300, 0, 0}},
      {{true, false, 960, 960, 10, 50, 1, 2, 3, false, false}, {0x10000, 0, 50, 50, 10, 10, 7, 7}},
      {{true, false, 960, 960, 10, 50, 1, 2, 3, false, true}, {0x10000, 0, 50, 50, 900, 10, 7, 7}},
  };
  for (const auto& [back, wanted] : kBacks) EXPECT_EQ(Split(back), wanted);
}

TEST(Split, RefusesWhatWouldDivideByNothingAndLeavesTheRecord) {
  constexpr std::pair<Front, bool> kFronts[] = {
      {{true, true, 0, 960, 0, 10, 0, 0, 0, 1, false}, true},
      {{true, true, 1920, 960, 0, 0, 0, 0, 0, 1, false}, true},
      {{true, true, 1920, 1, 0, 10, 0, 0, 0, 1, false}, true},     // a target of one pixel
      {{true, true, 1, 960, 0, 1, 0, 0, 0, 1, false}, true},       // passes, so its target is 1 too
      {{true, true, 1, 960, 0, 1, 0, 0, 0, 1, true}, false},       // one pixel enlarged as a whole
      {{true, false, 1, 960, 0, 1, 0, 0, 0, 1, true}, true},       // but not told apart
      {{true, false, 1920, 960, 0, 1, 0, 0, 0, 1, false}, false},  // a cell of one pixel
      {{true, false, 0x80000000, 960, 0, 10, 0, 0, 0, 1, false}, true},
      {{false, false, 32769, 2, 40000, 10, 0, 0, 1, 255, false}, true},  // no pixel that far
  };
  for (const auto& [front, refused] : kFronts) {
    EXPECT_EQ(Split(front) == kUntouched, refused) << front.SrcInHSize;
  }
  constexpr std::pair<Back, bool> kBacks[] = {
      {{true, true, 0, 960, 0, 10, 0, 1, 0, false, false}, true},
      {{true, true, 960, 1920, 0, 0, 0, 1, 0, false, false}, true},
      {{false, false, 1, 1920, 500, 10, 0, 1, 0, false, false}, false},
      {{true, true, 960, 65536, 0, 10, 0, 1, 0, false, false}, true},
  };
  for (const auto& [back, refused] : kBacks) {
    EXPECT_EQ(Split(back) == kUntouched, refused) << back.SrcInHSize;
  }
}

// Three of four cells as they occur, the others anywhere and of any size; each is both a front and
// a back one. The sum is of results that agreed with a second form of the tables, case by case.
TEST(Split, ThousandsOfCellsAreAsTheyWere) {
  support::Random random(84);
  uint64_t sum = 0xCBF29CE484222325;
  for (int i = 0; i < 100000; ++i) {
    const bool wild = random(0, 3) == 0;
    const auto pick = [&](int least, int most) {
      return unsigned(wild ? random(0, 65535) : random(least, most));
    };
    const auto byte = [&](int most) { return uint8_t(random(0, wild ? 255 : most)); };
    const unsigned S = pick(2, 4096), O = pick(2, 4096);
    const unsigned P = random.Flip() ? pick(0, int(std::min(S, O)) - 1) : 0;
    const unsigned W = pick(1, int(std::min(S, O) - P));
    const bool left = wild ? random.Flip() : P == 0 && random(0, 7) != 0;
    const bool right = wild ? random.Flip() : P + W == S || random(0, 3) == 0;
    const bool magnify = random.Flip(), mirror = random.Flip();
    const uint8_t CL = byte(8), CR = byte(8), SL = byte(3), SR = byte(4);
    for (const Cell& cell : {Split(Front{left, right, S, O, P, W, CL, CR, SL, SR, magnify}),
                             Split(Back{left, right, S, O, P, W, SL, SR, CL, magnify, mirror})}) {
      for (const unsigned word : cell) sum = (sum ^ word) * 0x100000001B3;
    }
  }
  EXPECT_EQ(sum, 6085086856987815380U);
}

}  // namespace
}  // namespace ZEPH_MCUC
