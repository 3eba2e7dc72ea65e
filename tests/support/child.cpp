#include "support/child.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace support {
namespace {

constexpr unsigned kPatience_s = 60;

int g_complaints = -1;  // the child's end of the pipe

std::string ReadToEnd(int descriptor) {
  std::string text;
  char bytes[4096];
  for (ssize_t size; (size = read(descriptor, bytes, sizeof bytes)) > 0;) {
    text.append(bytes, static_cast<std::size_t>(size));
  }
  return text;
}

}  // namespace

ChildResult InChild(const std::function<void()>& body) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (child == 0) {
    g_complaints = ends[1];
    alarm(kPatience_s);
    body();
    std::fflush(nullptr);
    _exit(0);
  }
  close(ends[1]);
  ChildResult result{0, ReadToEnd(ends[0])};
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  result.status = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
  return result;
}

void Complain(const std::string& text) {
  // A parent that is gone hears nothing.
  static_cast<void>(!write(g_complaints, text.data(), text.size()));
}

}  // namespace support
