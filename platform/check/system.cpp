// platform/system.h: paths, commands, waits, the clock.
#include <platform/system.h>
#include <sys/time.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string>

#include "check/report.h"

namespace check {
namespace {

using std::chrono::microseconds;
using std::chrono::steady_clock;

constexpr int kThreads = 4;

void Paths(Report& report) {
  report.Holds(platform::DevicePath("log/x") == "log/x", "a relative path comes back as it is");
  report.Holds(platform::DevicePath("/log").starts_with('/'), "a device path is absolute");
}

struct CommandCase {
  const char* command;
  int status;
  const char* claim;
};

constexpr CommandCase kCommands[] = {
    {"true", 0, "a command that succeeds gives 0"},
    {"exit 7", 7, "a command gives its exit status"},
    {"quivord-no-such-program 2>&-", 127, "a command that is not there gives 127"},
    {"kill -9 $$", 137, "a command that signal 9 ends gives 137"},
};

bool OutputIs(const char* command, const std::string& text, int status) {
  std::FILE* const stream = platform::OpenShell(command);
  if (stream == nullptr) return false;
  std::string output;
  for (int c = 0; (c = std::fgetc(stream)) != EOF;) output += static_cast<char>(c);
  return platform::CloseShell(stream) == status && output == text;
}

void Commands(Report& report) {
  for (const CommandCase& entry : kCommands) {
    report.Holds(platform::RunShell(entry.command) == entry.status, entry.claim);
  }
  report.Holds(OutputIs("echo one; echo two; exit 3", "one\ntwo\n", 3),
               "a command's output can be read, and its status follows");
  const bool apart = AtOnce(kThreads, [](int i) {
    const std::string number = std::to_string(i + 1);
    return platform::RunShell(("exit " + number).c_str()) == i + 1 &&
           OutputIs(("echo " + number).c_str(), number + "\n", 0);
  });
  report.Holds(apart, "commands of several threads keep their status and output apart");
}

bool LastsAtLeast(std::uint64_t microseconds_asked) {
  const auto start = steady_clock::now();
  platform::SleepMicroseconds(microseconds_asked);
  return steady_clock::now() - start >= microseconds(microseconds_asked);
}

// A wait of 60 ms while a signal arrives every 5 ms.
bool LastsUnderSignals() {
  struct sigaction quiet {
  }, before{};
  quiet.sa_handler = [](int) {};
  sigaction(SIGALRM, &quiet, &before);
  const itimerval often{{0, 5000}, {0, 5000}}, never{};
  setitimer(ITIMER_REAL, &often, nullptr);
  const bool lasts = LastsAtLeast(60'000);
  setitimer(ITIMER_REAL, &never, nullptr);
  sigaction(SIGALRM, &before, nullptr);
  return lasts;
}

void Waits(Report& report) {
  bool lasts = true;
  for (const std::uint64_t wait : {0, 1, 100, 1000, 25'000}) lasts = LastsAtLeast(wait) && lasts;
  report.Holds(lasts, "a wait is never shorter than asked");
  report.Holds(LastsUnderSignals(), "a wait is not cut short by signals");
}

std::int64_t Now_us() {
  timeval now{};
  if (platform::GetTimeOfDay(&now, nullptr) != 0) return -1;
  return now.tv_sec * std::int64_t{1'000'000} + now.tv_usec;
}

bool SetNow_us(std::int64_t time) {
  timeval now{};
  now.tv_sec = static_cast<decltype(now.tv_sec)>(time / 1'000'000);
  now.tv_usec = static_cast<decltype(now.tv_usec)>(time % 1'000'000);
  return platform::SetTimeOfDay(&now, nullptr) == 0;
}

void SettingTheClock(Report& report, const Options& options) {
  constexpr const char* kClaim = "the clock shows what it is set to";
  if (!options.lasting) return report.Skip(kClaim, "needs --lasting");
  constexpr std::int64_t kStep_us = 100'000'000, kSlack_us = 5'000'000;
  const std::int64_t before = Now_us();
  const bool set = SetNow_us(before + kStep_us);
  const std::int64_t ahead = Now_us() - before;
  report.Holds(set && ahead >= kStep_us && ahead < kStep_us + kSlack_us, kClaim);
  report.Holds(!set || SetNow_us(Now_us() - kStep_us), "the clock can be set back");
}

bool GoesOn() {
  const std::int64_t first = Now_us();
  platform::SleepMicroseconds(50'000);
  return first >= 0 && Now_us() - first >= 40'000;
}

void Clock(Report& report, const Options& options) {
  report.Holds(GoesOn(), "time goes on while a thread waits");
  const bool kept = AtOnce(1, [](int) {
    platform::KeepTime();
    return GoesOn();
  });
  report.Holds(kept, "time goes on while the thread waits that keeps it");
  const std::int64_t first_s = Now_us() / 1'000'000, second_s = platform::Time();
  report.Holds(second_s >= first_s && second_s <= first_s + 2, "both readings of the clock agree");
  SettingTheClock(report, options);
}

}  // namespace

void System(Report& report, const Options& options) {
  Paths(report);
  Commands(report);
  Waits(report);
  Clock(report, options);
  Devices(report, options);
}

}  // namespace check
