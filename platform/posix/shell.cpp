#include "posix/shell.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <string>

namespace posix {
namespace {

constexpr int kBySignal = 128;

// The daemon's own ignored and blocked signals are nothing to a command.
void UseDefaultSignals(posix_spawnattr_t& attributes) {
  sigset_t defaults, none;
  sigemptyset(&none);
  sigemptyset(&defaults);
  sigaddset(&defaults, SIGPIPE);
  posix_spawnattr_setsigdefault(&attributes, &defaults);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
}

}  // namespace

pid_t StartShell(const char* command, int output, char* const* variables) {
  std::string shell = "sh", option = "-c", text = command;
  char* const arguments[] = {shell.data(), option.data(), text.data(), nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributes;
  posix_spawn_file_actions_init(&actions);
  posix_spawnattr_init(&attributes);
  if (output >= 0) posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
  UseDefaultSignals(attributes);
  pid_t process = -1;
  const int fault = posix_spawn(&process, "/bin/sh", &actions, &attributes, arguments, variables);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  return fault == 0 ? process : -1;
}

int WaitForShell(pid_t process) {
  int status = 0;
  pid_t ended = -1;
  do {
    ended = waitpid(process, &status, 0);
  } while (ended < 0 && errno == EINTR);
  if (ended < 0) return -1;
  return WIFSIGNALED(status) ? kBySignal + WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace posix
