// What a picture of gamma tables shows: the tables, and the curve that stands under them.
//
// Pure, any thread.
#pragma once

#include <cstdint>
#include <string>

#include "colour/gammaset.h"
#include "proto/calc_hc.h"

namespace quivord::colour {

// What tables the FPGA holds, as far as its switches tell.
enum class Tables : std::uint8_t {
  kOfMode,    // of the mode that the daemon knows
  kLeftOver,  // the daemon knows of the default mode, the FPGA is still set for an HDR one
  kUnknown,   // nobody has chosen a mode since the daemon's start, or one that has no tables
};

struct Scene {
  GammaSet set;
  ZEPH_MCUC::hc::HDRParaData mode;  // what the daemon knows of it
  Tables tables = Tables::kOfMode;
};

// The curve by which the tables of a mode are made, and the light that it ends at.
struct Reference {
  std::string name;
  double peak_nits = 0;  // 0: the mode knows only shares of the screen's light
};
Reference ReferenceOf(const Scene& scene);

// Its light for an input code, from 0 to 1.
double ReferenceLight(const Scene& scene, std::size_t code);

// What the tables are for, and what they are.
std::string TitleText(const Scene& scene);
std::string SubtitleText(const Scene& scene);

}  // namespace quivord::colour
