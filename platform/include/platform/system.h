// What the daemon asks of the operating system where a careless call would touch the machine it
// runs on: device paths, shell commands, waiting, the clock, character devices.
//
// A platform answers every function below. All may be called from any thread at the same time.
#pragma once

#include <sys/time.h>
#include <sys/types.h>

#include <cstdint>
#include <cstdio>
#include <ctime>
#include <string>
#include <string_view>

// Daemon and platform agree on times, also on a 32-bit machine.
static_assert(sizeof(std::time_t) == 8 && sizeof(off_t) == 8,
              "compile with -D_TIME_BITS=64 -D_FILE_OFFSET_BITS=64");

namespace platform {

// Makes the platform ready: creates or checks whatever the other functions stand on. Called once,
// first thing in `main`; a platform whose functions set themselves up on first use may do nothing.
// Failure: does not return; says on standard error what is wrong and ends the process with
// status 1.
void Initialize();

// Where the absolute device path `path` lies on this machine. On a device: the path itself. A path
// that does not begin with "/" comes back as it is.
std::string DevicePath(std::string_view path);

// Runs `command` by /bin/sh and waits for it.
// Returns: the command's exit status 0 to 255, 127 where the command is not there, 128 + n where
// signal n ended it, -1 where no shell could be started.
int RunShell(const char* command);

// Starts `command` by /bin/sh with its standard output as the stream that is returned.
// Failure: null, and nothing was started. The stream is ended by `CloseShell`, which waits for the
// command and returns what `RunShell` returns.
std::FILE* OpenShell(const char* command);
int CloseShell(std::FILE* stream);

// Waits at least `microseconds`. Never returns early, also when a signal arrives.
void SleepMicroseconds(std::uint64_t microseconds);

// Says that the calling thread's waits carry the daemon's periodic work. A platform whose time runs
// faster than the machine's moves its clock by them; others do nothing.
void KeepTime();

// Seconds since 1970, and the same with microseconds and time zone, as `time` and `gettimeofday`.
std::time_t Time();
int GetTimeOfDay(struct timeval* time, struct timezone* zone);

// Sets the clock. Returns 0, or -1 without the right to do so; the clock is then as before.
int SetTimeOfDay(const struct timeval* time, const struct timezone* zone);

// A character device by its device path: `open` with `flags`, one `ioctl`, `close`.
// Failure: -1; `ControlDevice` then has moved nothing into `argument`.
int OpenDevice(const char* path, int flags);
int ControlDevice(int device, unsigned long request, void* argument);
void CloseDevice(int device);

}  // namespace platform
