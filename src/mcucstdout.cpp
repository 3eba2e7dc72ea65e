#include "mcucstdout.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ZEPH_MCUC {
namespace {

// A pipe or a terminal is opened once more for writes that don't wait; the description that other
// processes share stays as it is. Other kinds are taken as they are: a plain file never waits, and
// a socket can't be opened.
int OpenOutput() {
  struct stat status {};
  if (fstat(STDOUT_FILENO, &status) != 0) return STDOUT_FILENO;
  if (!S_ISFIFO(status.st_mode) && !S_ISCHR(status.st_mode)) return STDOUT_FILENO;
  const int own = open("/proc/self/fd/1", O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  return own >= 0 ? own : STDOUT_FILENO;
}

}  // namespace

void SayOnStandardOutput(std::string_view text) {
  static const int output = OpenOutput();
  pollfd ready{output, POLLOUT, 0};
  if (poll(&ready, 1, 0) != 1 || (ready.revents & POLLOUT) == 0) return;
  const ssize_t ignored = write(output, text.data(), text.size());
  static_cast<void>(ignored);
}

}  // namespace ZEPH_MCUC
