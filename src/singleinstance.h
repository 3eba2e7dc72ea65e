// The guard against a second daemon on the same device.
#pragma once

namespace ZEPH_MCUC {

// Takes the lock on the program's pid file and keeps it for the life of the process: returns 1.
// Returns 0, logged and said on standard error, where another process holds it. Ends the process
// with status 1 where the file can't be opened or written. `main` calls it, once.
int runSingleInstance();

}  // namespace ZEPH_MCUC
