// Ctrl-C and termination as a question: for programs that go on until somebody has seen enough.
#pragma once

namespace quivord::trace {

// From here on SIGINT and SIGTERM don't end the program; `Interrupted` tells that one has come.
void WatchInterrupts();
bool Interrupted();

}  // namespace quivord::trace
