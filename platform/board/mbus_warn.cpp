#include "board/mbus_warn.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace board::mbus {
namespace {

constexpr char kPrefix[] = "board: bus: ";

bool HasRoom(int descriptor) {
  pollfd poll_for{descriptor, POLLOUT, 0};
  return poll(&poll_for, 1, 0) == 1 && (poll_for.revents & POLLOUT) != 0;
}

}  // namespace

void Warn(const char* format, ...) {
  char line[256];
  std::memcpy(line, kPrefix, sizeof kPrefix);
  const std::size_t room = sizeof line - sizeof kPrefix;
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(line + sizeof kPrefix - 1, room, format, arguments);
  va_end(arguments);
  if (length < 0 || !HasRoom(STDERR_FILENO)) return;
  const std::size_t end = sizeof kPrefix - 1 + std::min<std::size_t>(length, room - 1);
  line[end] = '\n';
  if (write(STDERR_FILENO, line, end + 1) < 0) return;  // nobody is left to be told
}

}  // namespace board::mbus
