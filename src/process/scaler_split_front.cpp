// The split in front of the frame memory.
#include <optional>

#include "process/scaler_split_axis.h"

namespace ZEPH_MCUC {
namespace {

// A source holds no more positions to try.
constexpr unsigned kMostTries = 1 << 16;

// What a cell gives; numbers of extra pixels are cut to bytes at the end.
struct Result {
  unsigned phase = 0;
  unsigned in_size;
  unsigned out_size;
  unsigned in_start = 0;
  unsigned out_start = 0;
  unsigned left = 0;
  unsigned right = 0;
};

class Front {
 public:
  explicit Front(const DDR_FRONT_SPLIT_PARM_IN& in)
      : in_(in),
        source_(in.SrcInHSize),
        target_(in.SupportMagnifyEn || source_ >= in.SrcOutHSize ? in.SrcOutHSize : source_),
        start_(in.InCellStartHPos),
        size_(in.InCellHSize),
        cut_{in.SrcCutLeftExtraDataNum, in.SrcCutRightExtraDataNum},
        reach_{in.ScalerCalLeftExtraDataNum, in.ScalerCalRightExtraDataNum} {}

  TT_SPLIT_ERROR Calculate(DDR_FRONT_SPLIT_PARM_OUT* out) {
    if (target_ == 1) return TT_ERROR_FRONT_IN_PARM;
    axis_.step = split::Step(source_, target_);
    const bool whole = in_.SrcLeftBd && in_.SrcRightBd;
    if (target_ != source_ && !whole && axis_.step == 0) return TT_ERROR_FRONT_IN_PARM;
    const auto result = target_ == source_ ? Unscaled() : Scaled();
    if (!result) return TT_ERROR_FRONT_IN_PARM;
    *out = {.OutFrontScalerHStep = axis_.step,
            .OutFrontScalerHInitPhase = result->phase,
            .OutFrontScalerHInSize = result->in_size,
            .OutFrontScalerHOutSize = result->out_size,
            .OutSrcInHStartPos = result->in_start,
            .OutSrcOutHStartPos = result->out_start,
            .OutCellLeftExtraOutNum = static_cast<uint8_t>(result->left),
            .OutCellRightExtraOutNum = static_cast<uint8_t>(result->right)};
    return TT_SPLIT_SUCCEED;
  }

 private:
  bool Over() const { return start_ + size_ + cut_.right > source_; }

  // Nothing is scaled: output pixels are input pixels.
  std::optional<Result> Unscaled() const {
    struct Pass {
      unsigned size, start, left, right;
    };
    const unsigned S = source_, P = start_, W = size_, CL = cut_.left, CR = cut_.right;
    const auto pass = [&]() -> Pass {
      if (in_.SrcLeftBd && in_.SrcRightBd) return {W, P, 0, 0};
      if (in_.SrcLeftBd) return Over() ? Pass{S - P, P, 0, S - W} : Pass{W + CR, P, 0, CR};
      if (in_.SrcRightBd) return CL > P ? Pass{W + P, 0, S - W, 0} : Pass{CL + W, P - CL, CL, 0};
      if (CL > P) return Over() ? Pass{S, 0, P, S - (W + P)} : Pass{W + P + CR, 0, P, CR};
      return Over() ? Pass{CL + (S - P), P - CL, CL, S - (W + P)}
                    : Pass{CL + W + CR, P - CL, CL, CR};
    }();
    return Result{.in_size = pass.size,
                  .out_size = pass.size,
                  .in_start = pass.start,
                  .out_start = pass.start,
                  .left = pass.left,
                  .right = pass.right};
  }

  std::optional<Result> Scaled() const {
    if (in_.SrcLeftBd) return in_.SrcRightBd ? Whole() : LeftCell();
    if (cut_.left >= start_) return in_.SrcRightBd ? WholeFromLeft() : MiddleFromLeft();
    const auto first = FirstOutput();
    if (!first) return std::nullopt;
    return in_.SrcRightBd ? RightCell(*first) : MiddleCell(*first);
  }

  Result Whole() const { return {.in_size = source_, .out_size = target_}; }

  Result LeftCell() const {
    const unsigned shown = axis_.OutputAt(Adjusted(size_)) + 1;
    if (start_ + size_ + cut_.right >= source_) {
      Result result = Whole();
      result.right = target_ - shown;
      return result;
    }
    const unsigned last = axis_.OutputAt(size_ + cut_.right - reach_.right);
    const unsigned wanted =
        std::max(reach_.right + axis_.Position(last) + 1, reach_.right + reach_.left + 1);
    return {.in_size = split::Clamp(wanted, start_, source_),
            .out_size = last + 1,
            .in_start = start_,
            .out_start = start_,
            .right = (last + 1) - shown};
  }

  Result WholeFromLeft() const {
    Result result = Whole();
    result.left = axis_.OutputAt(Adjusted(start_)) + 1;
    return result;
  }

  Result RightCell(unsigned first) const {
    const unsigned end = axis_.OutputAt(source_ - 1) + 1;
    Result result = Placed(first, end, axis_.step * first);
    result.left = axis_.OutputAt(Adjusted(start_)) + 1 - first;
    return result;
  }

  Result MiddleFromLeft() const {
    const unsigned last =
        axis_.OutputAt(Over() ? source_ - 1 : start_ + size_ + cut_.right - reach_.right - 1);
    return {.in_size = split::Clamp(reach_.right + axis_.Position(last) + 1, 0, source_),
            .out_size = last + 1,
            .left = axis_.OutputAt(start_) + 1,
            .right = (last + 1) - EndOfCell()};
  }

  Result MiddleCell(unsigned first) const {
    const unsigned reached =
        axis_.OutputAt(Over() ? source_ - 1 : start_ + size_ + cut_.right - reach_.right - 1) + 1;
    const unsigned end = std::max(reached, first + 1);
    Result result = Placed(first, end, 0);
    result.left = axis_.OutputAt(start_) + 1 - first;
    result.right = end - EndOfCell();
    return result;
  }

  // Behind the last output pixel of the cell itself.
  unsigned EndOfCell() const { return axis_.OutputAt(Adjusted(start_ + size_)) + 1; }

  // The last pixel of the source has no neighbour to interpolate with: the one before stands for
  // it.
  unsigned Adjusted(unsigned n) const { return n + 1 == source_ ? n - 1 : n; }

  // The first output pixel of a cell that doesn't begin at the left edge; none where the cell lies
  // past the source.
  std::optional<unsigned> FirstOutput() const {
    unsigned k = axis_.OutputAt(start_ - cut_.left - 1) + 1;
    const unsigned wanted = start_ - cut_.left + reach_.right - 1;
    for (unsigned tries = 0; tries < kMostTries; ++tries, ++k) {
      if (axis_.Position(k) >= wanted) return k;
    }
    return std::nullopt;
  }

  // Output pixels `first` up to `end`; at the left edge the run starts at `edge_phase`.
  Result Placed(unsigned first, unsigned end, unsigned edge_phase) const {
    const unsigned p = axis_.Position(first);
    const unsigned f = axis_.Fraction(first);
    const unsigned last = axis_.Position(end - 1);
    const bool at_left = reach_.left > p;
    split::Run run{0, last + reach_.right + 1, edge_phase};
    if (!at_left) {
      run = source_ - p - 1 > reach_.right ? split::MiddleRun(reach_, p, f, last)
                                           : split::RightRun(reach_, source_, p, f, last);
    }
    return {.phase = run.phase,
            .in_size = split::Clamp(run.size, run.start, source_),
            .out_size = end - first,
            .in_start = run.start,
            .out_start = at_left ? 0 : first};
  }

  const DDR_FRONT_SPLIT_PARM_IN& in_;
  const unsigned source_;
  const unsigned target_;
  const unsigned start_;
  const unsigned size_;
  const split::Reach cut_;
  const split::Reach reach_;
  split::Axis axis_{};
};

}  // namespace

TT_SPLIT_ERROR DDRFrontSplit(const DDR_FRONT_SPLIT_PARM_IN* in, DDR_FRONT_SPLIT_PARM_OUT* out) {
  if (!split::Holds(in->SrcInHSize, in->SrcOutHSize, in->InCellHSize)) {
    return TT_ERROR_FRONT_IN_PARM;
  }
  return Front(*in).Calculate(out);
}

}  // namespace ZEPH_MCUC
