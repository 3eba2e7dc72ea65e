// A set of gamma tables: red, green and blue, as files hold it and in words.
//
// Pure but for the text that is given; any thread.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "proto/calc_curves.h"
#include "quivord/result.h"

namespace quivord::colour {

using GammaSet = std::array<ZEPH_MCUC::GammaTable, 3>;

// Understands a file:
//   text    a line an input code, from no signal up: one number, or three for red, green and blue,
//           0 to 65535, between them blanks or commas; 4096 lines, or 1024 of which each stands for
//           four codes. What follows a # is a remark.
//   binary  8192 bytes, or 24576 for red, green and blue: 16 bits an input code, low byte first
// Entries never fall. Anything else is kWrongUse, with the line or entry named.
Result<GammaSet> ParseGamma(std::string_view bytes);

// What a table is: "the built-in default", "HLG of class 4", "a power of 2.20", "dark", or else
// "a curve of its own".
std::string CurveText(const ZEPH_MCUC::GammaTable& table);

}  // namespace quivord::colour
