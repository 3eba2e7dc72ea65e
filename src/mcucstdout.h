// Standard output as the daemon uses it: a copy for whoever watches, and never a reason to wait.
#pragma once

#include <string_view>

namespace ZEPH_MCUC {

// Writes `text` as far as standard output takes it at once; what it doesn't take is lost, which is
// no failure. Any thread; never waits.
void SayOnStandardOutput(std::string_view text);

}  // namespace ZEPH_MCUC
