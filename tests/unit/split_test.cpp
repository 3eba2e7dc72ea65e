// Splits of an axis into cells: worked cells, refusals, and a second form over random ones.
#include <gtest/gtest.h>

#include "process/scaler_split_porting_code.h"
#include "support/rounds.h"
#include "support/slow_split.h"

namespace ZEPH_MCUC {
namespace {

using slow_split::Cell;
using Byte = uint8_t;

DDR_FRONT_SPLIT_PARM_IN Request(const slow_split::Front& f) {
  return {f.left,     f.right,    f.S,        f.O,        f.P,      f.W,
          Byte(f.CL), Byte(f.CR), Byte(f.SL), Byte(f.SR), f.magnify};
}

DDR_BACK_SPLIT_PARM_IN Request(const slow_split::Back& b) {
  return {b.left,     b.right,    b.S,       b.O,      b.P,     b.W,
          Byte(b.SL), Byte(b.SR), Byte(b.U), b.shrink, b.mirror};
}

// What a split gives; `kept` is what the record held before.
TT_SPLIT_ERROR Split(const slow_split::Front& front, Cell* cell) {
  const auto request = Request(front);
  DDR_FRONT_SPLIT_PARM_OUT out{7, 7, 7, 7, 7, 7, 7, 7};
  const TT_SPLIT_ERROR result = DDRFrontSplit(&request, &out);
  *cell = {out.OutFrontScalerHStep,    out.OutFrontScalerHInitPhase, out.OutFrontScalerHInSize,
           out.OutFrontScalerHOutSize, out.OutSrcInHStartPos,        out.OutSrcOutHStartPos,
           out.OutCellLeftExtraOutNum, out.OutCellRightExtraOutNum};
  return result;
}

TT_SPLIT_ERROR Split(const slow_split::Back& back, Cell* cell) {
  const auto request = Request(back);
  DDR_BACK_SPLIT_PARM_OUT out{7, 7, 7, 7, 7, 7, 7, 7};
  const TT_SPLIT_ERROR result = DDRBackSplit(&request, &out);
  *cell = {out.OutBackScalerHStep,     out.OutBackScalerHInitPhase, out.OutBackScalerHInSize,
           out.OutBackScalerHOutSize,  out.OutBackInHStartPos,      out.OutBackOutHStartPos,
           out.OutBackOutLeftUnVldNum, out.OutBackOutRightUnVldNum};
  return result;
}

constexpr Cell kUntouched{7, 7, 7, 7, 7, 7, 7, 7};

TEST(Split, WorkedCells) {
  const std::pair<slow_split::Front, Cell> kFronts[] = {
      {{1920, 960, 0, 1920, 0, 0, 0, 1, true, true, false}, {131140, 0, 1920, 960, 0, 0, 0, 0}},
      {{3840, 1920, 1000, 1000, 4, 4, 1, 2, false, false, false},
       {131106, 82502, 1006, 502, 997, 499, 1, 1}},
      {{3840, 1920, 0, 2000, 4, 4, 1, 2, true, false, false}, {131106, 0, 2003, 1001, 0, 0, 0, 1}},
      {{3840, 1920, 2000, 1840, 4, 4, 1, 2, false, true, false},
       {131106, 99502, 1843, 921, 1997, 999, 1, 0}},
      {{960, 1920, 0, 960, 0, 0, 0, 1, true, true, false}, {0x10000, 0, 960, 960, 0, 0, 0, 0}},
      {{960, 1920, 100, 200, 4, 4, 1, 2, false, false, false},
       {0x10000, 0, 208, 208, 96, 96, 4, 4}},
      {{1920, 1920, 0, 100, 0, 4, 1, 2, false, false, true}, {0x10000, 0, 104, 104, 0, 0, 0, 4}},
  };
  for (const auto& [front, wanted] : kFronts) {
    Cell cell;
    EXPECT_EQ(Split(front, &cell), TT_SPLIT_SUCCEED);
    EXPECT_EQ(cell, wanted) << front.P << " " << front.W;
  }
  const std::pair<slow_split::Back, Cell> kBacks[] = {
      {{960, 1920, 500, 600, 1, 2, 0, false, false, false, false},
       {32750, 122072, 304, 600, 248, 500, 0, 0}},
      {{960, 1920, 0, 600, 1, 2, 0, true, false, false, false}, {32750, 0, 302, 600, 0, 0, 0, 0}},
      {{960, 1920, 1300, 620, 1, 2, 0, false, true, false, false},
       {32750, 107672, 312, 620, 648, 1300, 0, 0}},
      {{960, 960, 10, 50, 1, 2, 3, true, false, false, false}, {0x10000, 0, 50, 50, 10, 10, 7, 7}},
      {{960, 960, 10, 50, 1, 2, 3, true, false, false, true}, {0x10000, 0, 50, 50, 900, 10, 7, 7}},
  };
  for (const auto& [back, wanted] : kBacks) {
    Cell cell;
    EXPECT_EQ(Split(back, &cell), TT_SPLIT_SUCCEED);
    EXPECT_EQ(cell, wanted) << back.P << " " << back.W;
  }
}

TEST(Split, RefusesWhatWouldDivideByNothingAndLeavesTheRecord) {
  struct Case {
    slow_split::Front front;
    bool refused;
  };
  constexpr Case kFronts[] = {
      {{0, 960, 0, 10, 0, 0, 0, 1, true, true, false}, true},
      {{1920, 0, 0, 10, 0, 0, 0, 1, true, true, false}, true},
      {{1920, 960, 0, 0, 0, 0, 0, 1, true, true, false}, true},
      {{1920, 1, 0, 10, 0, 0, 0, 1, true, true, false}, true},  // a target of one pixel
      {{1, 1, 0, 1, 0, 0, 0, 1, true, true, false}, true},
      {{1, 960, 0, 1, 0, 0, 0, 1, true, true, false}, true},       // passes, so its target is 1 too
      {{1, 960, 0, 1, 0, 0, 0, 1, true, true, true}, false},       // one pixel enlarged as a whole
      {{1, 960, 0, 1, 0, 0, 0, 1, true, false, true}, true},       // but not told apart
      {{1920, 960, 0, 1, 0, 0, 0, 1, true, false, false}, false},  // a cell of one pixel
      {{65536, 960, 0, 10, 0, 0, 0, 1, true, true, false}, true},
      {{0x80000000, 960, 0, 10, 0, 0, 0, 1, true, false, false}, true},
      {{32769, 2, 40000, 10, 0, 0, 1, 255, false, false, false}, true},  // no pixel that far
  };
  for (const Case& c : kFronts) {
    Cell cell;
    EXPECT_EQ(Split(c.front, &cell) == TT_ERROR_FRONT_IN_PARM, c.refused) << c.front.S;
    EXPECT_EQ(cell == kUntouched, c.refused);
  }
  constexpr std::pair<slow_split::Back, bool> kBacks[] = {
      {{0, 960, 0, 10, 0, 1, 0, true, true, false, false}, true},
      {{960, 0, 0, 10, 0, 1, 0, true, true, false, false}, true},
      {{960, 1920, 0, 0, 0, 1, 0, true, true, false, false}, true},
      {{960, 1, 0, 10, 0, 1, 0, true, true, false, false}, true},
      {{1, 1920, 500, 10, 0, 1, 0, false, false, false, false}, false},
      {{960, 65536, 0, 10, 0, 1, 0, true, true, false, false}, true},
  };
  for (const auto& [back, refused] : kBacks) {
    Cell cell;
    EXPECT_EQ(Split(back, &cell) == TT_ERROR_FRONT_IN_PARM, refused) << back.S;
    EXPECT_EQ(cell == kUntouched, refused);
  }
}

// Both forms on the same request.
template <class Form>
void Compare(const Form& form) {
  Cell wanted = kUntouched;
  const bool served = form.Calculate(&wanted);
  Cell cell;
  ASSERT_EQ(Split(form, &cell), served ? TT_SPLIT_SUCCEED : TT_ERROR_FRONT_IN_PARM);
  wanted.LeftNum &= 0xFF;
  wanted.RightNum &= 0xFF;
  if (!served) wanted = kUntouched;
  ASSERT_EQ(cell, wanted) << form.S << " " << form.O << " " << form.P << " " << form.W;
}

// Mostly cells as they occur, a quarter of them anywhere and of any size.
TEST(Split, FrontAgreesWithItsTables) {
  support::Random random(84);
  for (int i = support::Rounds(100000); i > 0 && !testing::Test::HasFatalFailure(); --i) {
    const bool wild = random(0, 3) == 0;
    slow_split::Front f{};
    f.S = unsigned(wild ? random(0, 65535) : random(2, 4096));
    f.O = unsigned(wild ? random(0, 65535) : random(2, 4096));
    f.P = unsigned(random(0, wild ? 65535 : int(f.S) - 1) * random(0, 1));
    f.W = unsigned(random(wild ? 0 : 1, wild ? 65535 : int(f.S - f.P)));
    f.CL = unsigned(random(0, wild ? 255 : 8));
    f.CR = unsigned(random(0, wild ? 255 : 8));
    f.SL = unsigned(random(0, wild ? 255 : 3));
    f.SR = unsigned(random(0, wild ? 255 : 4));
    f.left = wild ? random.Flip() : f.P == 0 && random.Flip();
    f.right = wild ? random.Flip() : f.P + f.W == f.S;
    f.magnify = random.Flip();
    Compare(f);
  }
}

TEST(Split, BackAgreesWithItsTables) {
  support::Random random(85);
  for (int i = support::Rounds(100000); i > 0 && !testing::Test::HasFatalFailure(); --i) {
    const bool wild = random(0, 3) == 0;
    slow_split::Back b{};
    b.S = unsigned(wild ? random(0, 65535) : random(2, 4096));
    b.O = unsigned(wild ? random(0, 65535) : random(2, 4096));
    b.U = unsigned(random(0, wild ? 255 : 8));
    b.P = unsigned(random(0, wild ? 65535 : int(b.O) - 1) * random(0, 1));
    b.W = unsigned(random(wild ? 0 : 1, wild ? 65535 : int(b.O - b.P)));
    b.SL = unsigned(random(0, wild ? 255 : 3));
    b.SR = unsigned(random(0, wild ? 255 : 4));
    b.left = wild ? random.Flip() : b.P == 0;
    b.right = wild ? random.Flip() : b.P + b.W == b.O;
    b.shrink = random.Flip();
    b.mirror = random.Flip();
    Compare(b);
  }
}

// Cells of a whole picture: what each shows, put side by side, is the picture without gap or
// overlap.
TEST(Split, BackCellsJoin) {
  support::Random random(86);
  for (int i = 0; i < 2000; ++i) {
    const unsigned O = unsigned(random(64, 4096)), S = unsigned(random(32, int(O)));
    unsigned shown = 0;
    for (unsigned P = 0; P < O;) {
      const unsigned W = std::min(unsigned(random(16, 1024)), O - P);
      const unsigned U = P >= 4 ? 4 : 0;
      Cell cell;
      ASSERT_EQ(
          Split(slow_split::Back{S, O, P, W, 1, 2, U, P == 0, P + W == O, false, false}, &cell),
          TT_SPLIT_SUCCEED);
      ASSERT_LE(cell.InStart + cell.InSize, S);
      const bool joins = S != O && P != 0;
      shown += cell.OutSize - (joins ? cell.LeftNum + cell.RightNum : 0);
      P += W;
    }
    ASSERT_EQ(shown, O);
  }
}

TEST(Split, FilterReach) {
  const auto reach = [](int type, int extra) {
    return int{
        scaler_split_get_extra_data(en_scaler_split_type(type), en_scaler_split_extra_data(extra))};
  };
  constexpr int kReach[5][4] = {
      {0, 1, 2, 2}, {1, 2, 3, 3}, {0, 1, 2, 1}, {1, 2, 3, 2}, {4, 4, 6, 6}};
  for (int extra = 0; extra < 5; ++extra) {
    for (int type = 0; type < 4; ++type) EXPECT_EQ(reach(type, extra), kReach[extra][type]);
  }
  EXPECT_EQ(reach(4, 0), 0);
  EXPECT_EQ(reach(0, 5), 0);
  EXPECT_EQ(reach(255, 255), 0);
}

}  // namespace
}  // namespace ZEPH_MCUC
