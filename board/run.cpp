#include "run.h"

#include <sys/wait.h>

#include <cstdio>

#include "board/board.h"
#include "board/folder.h"
#include "board/power.h"
#include "program.h"
#include "status.h"

namespace board_tool {
namespace {

struct End {
  int status;
  bool told_to_stop;  // by a signal that was passed on
};

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
      return {ExitStatus(status), told_to_stop};
    }
    if (loading && Clock::now() >= loaded) {
      board::FinishFpgaLoad();
      loading = false;
    }
  }
}

}  // namespace

int RunDaemon(const std::vector<std::string>& options) {
  const auto folder = board::ChooseFolder();
  if (!std::filesystem::exists(folder / "board.conf")) {  // wanted, or a slip of the pen
    std::fprintf(stderr, "quivord-board: %s was no board yet, and is one now\n", folder.c_str());
  }
  board::Folder();
  BlockWatched();
  for (bool rebooted = board::TakeReboot();;) {
    if (!rebooted) board::ForgetBrokenReset();
    const pid_t daemon = Start(OwnFolder() / "quivord", options, false);
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
