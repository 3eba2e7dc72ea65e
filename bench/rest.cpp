// The daemon at rest beside a bare program that does nothing but sleep as its threads do, in one
// run: CPU of each and the ratio.
//
//   bench-rest [SECONDS, default 10]
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "process_usage.h"
#include "support/daemon.h"

namespace {

using std::chrono::microseconds;

constexpr unsigned long kTimerSlack_ns = 1000;     // as the daemon sets it
constexpr auto kSettle = std::chrono::seconds(4);  // until the daemon's polls have slowed down

// What the daemon's threads wait for when nothing comes: bus receive, work queue and report thread
// a millisecond, the loop 200 of them.
constexpr microseconds kWaits[] = {microseconds(1000), microseconds(1000), microseconds(1000),
                                   microseconds(200'000)};

[[noreturn]] void Sleep() {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  prctl(PR_SET_TIMERSLACK, kTimerSlack_ns);
  for (const microseconds wait : kWaits) {
    std::thread([wait] {
      while (true) usleep(static_cast<useconds_t>(wait.count()));
    }).detach();
  }
  while (true) poll(nullptr, 0, 100);  // the bus thread
}

}  // namespace

int main(int argc, char** argv) {
  const double seconds = argc > 1 ? std::atof(argv[1]) : 10;
  std::string folder = std::filesystem::temp_directory_path() / "quivord-rest-XXXXXX";
  if (mkdtemp(folder.data()) == nullptr) return 1;
  std::filesystem::create_directories(folder + "/etc/init.d");
  std::ofstream(folder + "/etc/init.d/flag_fpgaload");  // the loop runs
  support::Daemon daemon({.board = folder});
  const pid_t bare = fork();
  if (bare == 0) Sleep();
  const bool answers = daemon.WaitUntilItAnswers();
  if (answers) {
    std::this_thread::sleep_for(kSettle);
    const double daemonBefore = bench::CpuSeconds(daemon.pid());
    const double bareBefore = bench::CpuSeconds(bare);
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    const double daemonUsed = (bench::CpuSeconds(daemon.pid()) - daemonBefore) / seconds;
    const double bareUsed = (bench::CpuSeconds(bare) - bareBefore) / seconds;
    std::printf("quivord  %5.2f %% of a core, %ld KiB resident\n", 100 * daemonUsed,
                bench::SizeKiB(daemon.pid(), "VmRSS:"));
    std::printf("bare     %5.2f %% of a core\nratio    %5.2f\n", 100 * bareUsed,
                daemonUsed / bareUsed);
  } else {
    std::fprintf(stderr, "bench-rest: the daemon does not answer; is it built beside this?\n");
  }
  kill(bare, SIGKILL);
  waitpid(bare, nullptr, 0);
  daemon.Kill();
  std::error_code ignored;  // what is left is a temporary folder
  std::filesystem::remove_all(folder, ignored);
  return answers ? 0 : 1;
}
