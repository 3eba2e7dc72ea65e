// A configuration file from a readable description: a line a pack.
//
//   # brightness 60 %, then a table that the card needs some time to take
//   0x02000001  99
//   0x04000000  fill 00 1024
//   0x04000400  file gamma.bin   wait 50
//
// A line names a register of the card, then the bytes for it, in hexadecimal, as the content of a
// file, or as one byte so many times, and at last how many milliseconds to wait in addition. What
// is longer than a pack may be goes into several. `#` begins a comment.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "cardfiles/image.h"
#include "quivord/result.h"

namespace quivord::cardfiles {

// Gives the content of the file that a description names, or nothing.
using Source = std::function<std::optional<Bytes>(const std::string& name)>;

// The bytes of the file that `text` describes; kWrongUse with the line's number and the reason
// where it makes no sense. Pure but for `source`; any thread.
Result<Bytes> Compile(std::string_view text, const Source& source);

}  // namespace quivord::cardfiles
