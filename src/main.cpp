// The daemon's entry: the log level from one optional argument, the singletons in their order, then
// nothing: all work happens on the threads that `StubUtil::initialize` starts.
#include <platform/system.h>
#include <sys/prctl.h>

#include <csignal>
#include <cstring>

#include "driverutil.h"
#include "mcuctrace.h"
#include "process/tprocess_ctl.h"
#include "proto/tshl_ctl.h"
#include "singleinstance.h"
#include "stub/stubutil.h"

namespace {

using namespace ZEPH_MCUC;

constexpr char kVersion[] = "1.1.0.0";
constexpr uint64_t kPark_us = 5'000'000;
constexpr unsigned long kTimerSlack_ns = 1000;  // a poll's pause of 100 us shall not become 150

struct Option {
  const char* argument;
  int logLevel;
};
constexpr Option kOptions[] = {{"-info", 2}, {"-debug", 3}, {"-disable", kLogNothing}};

// No argument logs errors and warnings; one that is not known logs nothing.
int LogLevel(int argc, char** argv) {
  if (argc < 2) return 0;
  for (const Option& option : kOptions) {
    if (std::strcmp(argv[1], option.argument) == 0) return option.logLevel;
  }
  return kLogNothing;
}

}  // namespace

int main(int argc, char** argv) {
  std::signal(SIGPIPE, SIG_IGN);  // a reader of standard output that leaves ends nothing
  prctl(PR_SET_TIMERSLACK, kTimerSlack_ns);
  platform::Initialize();
  log_on = 1;
  g_logLevel = LogLevel(argc, argv);
  if (runSingleInstance() == 0) return 1;
  CTrace::instance();  // the file exists also where nothing is logged
  MCUC_LOG(kLogInfo,
           "================================= quivord start =================================");
  MCUC_LOG(kLogInfo, "Version:" << kVersion);
  platform::RunShell("mkdir -p /tmp/quivord");
  DriverUtil::getInstance()->initialize();  // the start goes on without flash
  Tprocess_ctl::getInstance()->initialize();
  Tshl_ctl::getInstance()->initialize();
  StubUtil::getInstance()->initialize();  // what fails is logged; the daemon stays
  while (true) platform::SleepMicroseconds(kPark_us);
}
