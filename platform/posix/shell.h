// Commands of /bin/sh, for the platforms on Linux. Any thread may call any function.
#pragma once

#include <sys/types.h>

namespace posix {

// Starts /bin/sh on `command` with its standard output at `output`, or where this process has its
// own for -1, and with the environment `variables`, closed by a null pointer.
// Failure: -1, and nothing was started.
pid_t StartShell(const char* command, int output, char* const* variables);

// Waits for the command's end.
// Returns: its exit status 0 to 255, 128 + n after signal n, -1 where `process` is none.
int WaitForShell(pid_t process);

}  // namespace posix
