#include "run.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>

#include "board/board.h"
#include "board/envstore.h"
#include "board/folder.h"
#include "board/power.h"
#include "status.h"

namespace board_tool {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kBySignal = 128;
constexpr int kNotStarted = 127;

struct End {
  int status;
  bool told_to_stop;  // by a signal that was passed on
};

sigset_t Watched() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGCHLD, SIGINT, SIGTERM}) sigaddset(&signals, signal);
  return signals;
}

std::string DaemonProgram() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path() / "quivord";
}

[[noreturn]] void BecomeDaemon(const std::string& program, const std::vector<std::string>& options,
                               pid_t parent) {
  std::vector<std::string> words = {program};
  words.insert(words.end(), options.begin(), options.end());
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const sigset_t signals = Watched();
  sigprocmask(SIG_UNBLOCK, &signals, nullptr);
  prctl(PR_SET_PDEATHSIG, SIGTERM);  // no daemon is left behind where this program is killed
  if (getppid() == parent) execv(program.c_str(), arguments.data());
  _exit(kNotStarted);
}

pid_t StartDaemon(const std::vector<std::string>& options) {
  const std::string program = DaemonProgram();
  if (access(program.c_str(), X_OK) != 0) {
    std::fprintf(stderr, "quivord-board: no daemon at %s; build it first\n", program.c_str());
    return -1;
  }
  const pid_t parent = getpid();
  const pid_t daemon = fork();
  if (daemon == 0) BecomeDaemon(program, options, parent);
  if (daemon < 0) std::perror("quivord-board: cannot start the daemon");
  return daemon;
}

// Waits for the next watched signal until `deadline`; 0 when that has passed.
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

// Stays with the daemon until it ends.
End Watch(pid_t daemon) {
  constexpr auto kIdle = std::chrono::hours(1);
  const auto loaded = Clock::now() + std::chrono::milliseconds(board::Config().fpga_load_ms);
  bool loading = !board::FpgaHasLoaded();
  bool told_to_stop = false;
  for (;;) {
    const int signal = NextSignal(loading ? loaded : Clock::now() + kIdle);
    if (signal == SIGINT || signal == SIGTERM) {
      told_to_stop = true;
      kill(daemon, signal);
    }
    int status = 0;
    if (waitpid(daemon, &status, WNOHANG) == daemon) {
      const int code = WIFSIGNALED(status) ? kBySignal + WTERMSIG(status) : WEXITSTATUS(status);
      return {code, told_to_stop};
    }
    if (loading && Clock::now() >= loaded) {
      board::FinishFpgaLoad();
      loading = false;
    }
  }
}

// A reset that was begun and never came to its reboot did not happen.
void ForgetBrokenReset() {
  if (board::ReadEnv("returnfactory") != "1") return;
  for (const char* const key : {"returnfactory", "factory_enable", "firstboot"}) {
    board::WriteEnv(key, "0");
  }
}

}  // namespace

int RunDaemon(const std::vector<std::string>& options) {
  board::Folder();
  const sigset_t signals = Watched();
  sigprocmask(SIG_BLOCK, &signals, nullptr);
  for (bool rebooted = board::TakeReboot();;) {
    if (!rebooted) ForgetBrokenReset();
    const pid_t daemon = StartDaemon(options);
    if (daemon < 0) return kFailed;
    const End end = Watch(daemon);
    rebooted = board::TakeReboot();
    const bool cut = !rebooted && end.status == board::kCutStatus;
    if (end.told_to_stop || (!rebooted && !cut)) return end.status;
    if (cut) board::PowerUp();
    std::fprintf(stderr, "quivord-board: the daemon ended by a %s and starts again\n",
                 cut ? "power cut" : "reboot");
  }
}

}  // namespace board_tool
