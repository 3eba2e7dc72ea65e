#include "program.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

namespace board_tool {
namespace {

constexpr int kBySignal = 128;
constexpr int kNotStarted = 127;

sigset_t Watched() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGCHLD, SIGINT, SIGTERM}) sigaddset(&signals, signal);
  return signals;
}

[[noreturn]] void Become(const std::string& program, const std::vector<std::string>& options,
                         bool quiet, pid_t parent) {
  std::vector<std::string> words = {program};
  words.insert(words.end(), options.begin(), options.end());
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  if (quiet) {
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere >= 0) dup2(nowhere, STDOUT_FILENO);
  }
  const sigset_t signals = Watched();
  sigprocmask(SIG_UNBLOCK, &signals, nullptr);
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (getppid() == parent) execv(program.c_str(), arguments.data());
  _exit(kNotStarted);
}

}  // namespace

std::filesystem::path OwnFolder() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

pid_t Start(const std::string& program, const std::vector<std::string>& options, bool quiet) {
  if (access(program.c_str(), X_OK) != 0) {
    std::fprintf(stderr, "quivord-board: no program at %s; build it first\n", program.c_str());
    return -1;
  }
  std::fflush(nullptr);
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child == 0) Become(program, options, quiet, parent);
  if (child < 0) std::perror(("quivord-board: cannot start " + program).c_str());
  return child;
}

void BlockWatched() {
  const sigset_t signals = Watched();
  sigprocmask(SIG_BLOCK, &signals, nullptr);
}

int NextSignal(Clock::time_point deadline) {
  const auto left = std::max(deadline - Clock::now(), Clock::duration::zero());
  const auto nanoseconds = std::chrono::duration_cast<std::chrono::nanoseconds>(left).count();
  const struct timespec wait {
    static_cast<std::time_t>(nanoseconds / 1000000000), static_cast<long>(nanoseconds % 1000000000)
  };
  const sigset_t signals = Watched();
  const int signal = sigtimedwait(&signals, nullptr, &wait);
  return signal > 0 ? signal : 0;
}

int ExitStatus(int waited) {
  return WIFSIGNALED(waited) ? kBySignal + WTERMSIG(waited) : WEXITSTATUS(waited);
}

}  // namespace board_tool
