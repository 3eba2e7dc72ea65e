// The split behind the frame memory.
#include "process/scaler_split_axis.h"

namespace ZEPH_MCUC {
namespace {

class Back {
 public:
  explicit Back(const DDR_BACK_SPLIT_PARM_IN& in)
      : in_(in),
        passes_(in.SupportShrinkEn ? in.SrcInHSize == in.SrcOutHSize
                                   : in.SrcInHSize >= in.SrcOutHSize),
        source_(passes_ ? in.SrcOutHSize : in.SrcInHSize),
        start_(in.InCellOutStartHPos),
        size_(in.InCellOutHSize),
        unseen_(in.ScalerUnvalidDataNum),
        reach_{in.ScalerCalLeftExtraDataNum, in.ScalerCalRightExtraDataNum},
        axis_{split::Step(source_, in.SrcOutHSize)} {}

  DDR_BACK_SPLIT_PARM_OUT Calculate() const {
    if (passes_) return Filled({start_, size_, 0}, size_, start_, 0, 0, in_.MirrorEn);
    if (in_.SrcLeftBd && in_.SrcRightBd) {
      return Filled({0, source_, 0}, in_.SrcOutHSize, 0, 0, 0, false);
    }
    if (in_.SrcLeftBd) return LeftCell();
    const unsigned right = in_.SrcRightBd ? 0 : unseen_;
    const unsigned first = start_ - unseen_;
    const unsigned last = axis_.Position(right + start_ + size_ - 1);
    return Filled(Placed(first, last), unseen_ + size_ + right, first, unseen_, right,
                  in_.MirrorEn);
  }

  bool passes() const { return passes_; }

 private:
  DDR_BACK_SPLIT_PARM_OUT Filled(const split::Run& run, unsigned out_size, unsigned out_start,
                                 unsigned left, unsigned right, bool mirror) const {
    return {.OutBackScalerHStep = axis_.step,
            .OutBackScalerHInitPhase = run.phase,
            .OutBackScalerHInSize = run.size,
            .OutBackScalerHOutSize = out_size,
            .OutBackInHStartPos = mirror ? source_ - run.size - run.start : run.start,
            .OutBackOutHStartPos = out_start,
            .OutBackOutLeftUnVldNum = static_cast<uint8_t>(left),
            .OutBackOutRightUnVldNum = static_cast<uint8_t>(right)};
  }

  DDR_BACK_SPLIT_PARM_OUT LeftCell() const {
    const unsigned wanted = reach_.right + axis_.Position(size_ + unseen_ - 1) + 1;
    const split::Run run{0, std::min(wanted, source_), 0};
    return Filled(run, size_, 0, 0, unseen_, in_.MirrorEn);
  }

  split::Run Placed(unsigned first, unsigned last) const {
    const unsigned p = axis_.Position(first);
    const unsigned f = axis_.Fraction(first);
    split::Run run{0, last + 1 + reach_.right, axis_.step * first};
    if (source_ - p - 1 <= reach_.right) {
      run = split::RightRun(reach_, source_, p, f, last);
    } else if (reach_.left <= p) {
      run = split::MiddleRun(reach_, p, f, last);
    }
    run.size = split::Clamp(run.size, run.start, source_);
    return run;
  }

  const DDR_BACK_SPLIT_PARM_IN& in_;
  const bool passes_;
  const unsigned source_;
  const unsigned start_;
  const unsigned size_;
  const unsigned unseen_;
  const split::Reach reach_;
  const split::Axis axis_;
};

}  // namespace

TT_SPLIT_ERROR DDRBackSplit(const DDR_BACK_SPLIT_PARM_IN* in, DDR_BACK_SPLIT_PARM_OUT* out) {
  if (!split::Holds(in->SrcInHSize, in->SrcOutHSize, in->InCellOutHSize) || in->SrcOutHSize == 1) {
    return TT_ERROR_FRONT_IN_PARM;
  }
  const Back back(*in);
  DDR_BACK_SPLIT_PARM_OUT result = back.Calculate();
  if (back.passes()) {
    result.OutBackOutLeftUnVldNum = out->OutBackOutLeftUnVldNum;
    result.OutBackOutRightUnVldNum = out->OutBackOutRightUnVldNum;
  }
  *out = result;
  return TT_SPLIT_SUCCEED;
}

}  // namespace ZEPH_MCUC
