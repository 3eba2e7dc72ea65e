// Both splits a second time, case by case in the letters of their tables: S source, O target, P and
// W place and size of the cell, CL and CR what a cut wants, SL and SR the filter's reach, U what is
// thrown away. Division is done bit by bit.
#pragma once

#include <algorithm>
#include <cstdint>

#include "process/scaler_split_porting_code.h"

namespace slow_split {

using u32 = uint32_t;

inline u32 Divide(u32 by, u32 value) {
  u32 quotient = 0;
  uint64_t rest = 0;
  for (int bit = 31; bit >= 0; --bit) {
    rest = rest << 1 | (value >> bit & 1);
    quotient <<= 1;
    if (rest < by) continue;
    rest -= by;
    quotient |= 1;
  }
  return quotient;
}

// What both give, in the order of both records.
struct Cell {
  u32 Step, Phase, InSize, OutSize, InStart, OutStart, LeftNum, RightNum;
  bool operator==(const Cell&) const = default;
};

inline bool Sizes(u32 S, u32 O, u32 W) {
  return std::min({S, O, W}) >= 1 && std::max({S, O, W}) <= 65535;
}

struct Front {
  u32 S, O, P, W, CL, CR, SL, SR;
  bool left, right, magnify;

  // False where the request is refused.
  bool Calculate(Cell* c) const {
    if (!Sizes(S, O, W)) return false;
    const u32 E = magnify || S >= O ? O : S;
    if (E == 1) return false;
    const u32 step = Divide(E - 1, (S - 1) << 16);
    const bool over = P + W + CR > S;
    *c = {step, 0, 0, 0, 0, 0, 0, 0};
    if (E == S) {
      Unscaled(over, c);
      return true;
    }
    if (left && right) {
      *c = {step, 0, S, E, 0, 0, 0, 0};
      return true;
    }
    return step != 0 && Scaled(step, E, over, c);
  }

 private:
  static void Set(u32 size, u32 start, u32 left_num, u32 right_num, Cell* c) {
    c->InSize = c->OutSize = size;
    c->InStart = c->OutStart = start;
    c->LeftNum = left_num;
    c->RightNum = right_num;
  }

  void Unscaled(bool over, Cell* c) const {
    const bool before = CL > P;
    if (left && right) Set(W, P, 0, 0, c);
    if (left && !right && over) Set(S - P, P, 0, S - W, c);
    if (left && !right && !over) Set(W + CR, P, 0, CR, c);
    if (!left && right && before) Set(W + P, 0, S - W, 0, c);
    if (!left && right && !before) Set(CL + W, P - CL, CL, 0, c);
    if (left || right) return;
    if (before && over) Set(S, 0, P, S - (W + P), c);
    if (before && !over) Set(W + P + CR, 0, P, CR, c);
    if (!before && !over) Set(CL + W + CR, P - CL, CL, CR, c);
    if (!before && over) Set(CL + (S - P), P - CL, CL, S - (W + P), c);
  }

  bool Scaled(u32 step, u32 E, bool over, Cell* c) const {
    const auto out = [&](u32 n) { return Divide(step, n << 16); };
    const auto adj = [&](u32 n) { return n + 1 == S ? n - 1 : n; };
    const auto pos = [&](u32 k) { return (step * k) / 65536; };
    const auto clamp = [&] {
      if (c->InSize + c->InStart > S) c->InSize = S - c->InStart;
    };
    if (left) {
      if (P + W + CR >= S) {
        *c = {step, 0, S, E, 0, 0, 0, E - (out(adj(W)) + 1)};
        return true;
      }
      const u32 e = out(W + CR - SR);
      *c = {step, 0, SR + pos(e) + 1, e + 1, P, P, 0, (e + 1) - (out(adj(W)) + 1)};
      if (c->InSize < SR + SL + 1) c->InSize = SR + SL + 1;
      clamp();
      return true;
    }
    if (CL >= P) {
      if (right) {
        *c = {step, 0, S, E, 0, 0, out(adj(P)) + 1, 0};
        return true;
      }
      const u32 e = over ? out(S - 1) : out(P + W + CR - SR - 1);
      *c = {step, 0, SR + pos(e) + 1, e + 1, 0, 0, out(P) + 1, (e + 1) - (out(adj(P + W)) + 1)};
      clamp();
      return true;
    }
    u32 k = out(P - CL - 1) + 1;
    for (int i = 0; pos(k) < P - CL + SR - 1; ++k) {
      if (++i == 65536) return false;
    }
    u32 e = over || right ? out(S - 1) + 1 : out(P + W + CR - SR - 1) + 1;
    if (!right) e = std::max(e, k + 1);
    const u32 p = pos(k), f = (step * k) % 65536, q = pos(e - 1);
    if (SL > p) {
      *c = {step, right ? step * k : 0, q + SR + 1, 0, 0, 0, 0, 0};
    } else if (S - p - 1 > SR) {
      *c = {step, SL * 65536 + f, SL + q - p + SR + 1, 0, p - SL, k, 0, 0};
    } else {
      *c = {step, (p - S + SR + SL + 1) * 65536 + f, SL + q - p + SR + 1, 0, S - SR - SL - 1, k, 0,
            0};
    }
    clamp();
    c->OutSize = e - k;
    c->LeftNum = (right ? out(adj(P)) : out(P)) + 1 - k;
    c->RightNum = right ? 0 : e - (out(adj(P + W)) + 1);
    return true;
  }
};

struct Back {
  u32 S, O, P, W, SL, SR, U;
  bool left, right, shrink, mirror;

  // False where the request is refused. Where nothing is scaled, the last two fields stay.
  bool Calculate(Cell* c) const {
    if (!Sizes(S, O, W) || O == 1) return false;
    const bool same = shrink ? S == O : S >= O;
    const u32 s = same ? O : S;
    const u32 step = Divide(O - 1, (s - 1) << 16);
    const auto pos = [&](u32 k) { return (step * k) / 65536; };
    if (same) {
      *c = {step, 0, W, W, P, P, c->LeftNum, c->RightNum};
    } else if (left && right) {
      *c = {step, 0, s, O, 0, 0, 0, 0};
      return true;
    } else if (left) {
      const u32 size = std::min(SR + pos(W + U - 1) + 1, s);
      *c = {step, 0, size, W, 0, 0, 0, U};
    } else {
      const u32 a = P - U, acc = step * a, p = pos(a), f = acc % 65536;
      const u32 T = (right ? pos(W + P - 1) : pos(U + P + W - 1)) - p + 1;
      *c = {step, 0, SL + T + SR, right ? U + W : 2 * U + W, 0, a, U, right ? 0 : U};
      if (s - p - 1 <= SR) {
        c->InStart = s - SR - SL - 1;
        c->Phase = (p - s + SR + SL + 1) * 65536 + f;
      } else if (SL > p) {
        c->InSize = p + T + SR;
        c->Phase = acc;
      } else {
        c->InStart = p - SL;
        c->Phase = SL * 65536 + f;
      }
      if (c->InSize + c->InStart > s) c->InSize = s - c->InStart;
    }
    if (mirror) c->InStart = s - c->InSize - c->InStart;
    return true;
  }
};

}  // namespace slow_split
