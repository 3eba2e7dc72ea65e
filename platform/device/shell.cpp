// Shell commands on a device: by /bin/sh, with the daemon's own environment.
#include <fcntl.h>
#include <platform/system.h>
#include <unistd.h>

#include <map>
#include <memory>
#include <mutex>

#include "posix/shell.h"

namespace {

// The commands whose output is being read, by their streams.
struct OpenCommands {
  std::mutex lock;
  std::map<std::FILE*, pid_t> by_stream;
};

OpenCommands& Running() {
  static OpenCommands& running = *std::make_unique<OpenCommands>().release();
  return running;
}

// Takes the stream's command out of the list; -1 where it is none.
pid_t TakeCommand(std::FILE* stream) {
  const std::lock_guard hold(Running().lock);
  const auto entry = Running().by_stream.extract(stream);
  return entry ? entry.mapped() : -1;
}

}  // namespace

namespace platform {

int RunShell(const char* command) {
  const pid_t process = posix::StartShell(command, -1, environ);
  return process < 0 ? -1 : posix::WaitForShell(process);
}

std::FILE* OpenShell(const char* command) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return nullptr;
  std::FILE* const stream = fdopen(ends[0], "r");
  const pid_t process = stream == nullptr ? -1 : posix::StartShell(command, ends[1], environ);
  close(ends[1]);
  if (process >= 0) {
    const std::lock_guard hold(Running().lock);
    Running().by_stream[stream] = process;
    return stream;
  }
  if (stream != nullptr) {
    std::fclose(stream);
  } else {
    close(ends[0]);
  }
  return nullptr;
}

int CloseShell(std::FILE* stream) {
  const pid_t process = TakeCommand(stream);
  if (process < 0) return -1;
  std::fclose(stream);
  return posix::WaitForShell(process);
}

}  // namespace platform
