#include "board/power.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <ctime>

#include "board/board.h"
#include "board/cells.h"
#include "board/envstore.h"
#include "board/files.h"
#include "board/journal.h"
#include "board/stores.h"

namespace board {
namespace {

// Exists and is locked while a reboot runs; stays until somebody has taken notice.
constexpr const char* kRebootMark = "run/reboot";

std::filesystem::path FlagFile() { return Folder() / "etc/init.d/flag_fpgaload"; }

bool LockMark(const FileHandle& mark) {
  int result = -1;
  do {
    result = flock(mark.get(), LOCK_EX);
  } while (result != 0 && errno == EINTR);
  return result == 0;
}

// The process that holds the lock on the pid file, or 0.
pid_t Holder() {
  const FileHandle file(open((Folder() / "var/run/quivord.pid").c_str(), O_RDWR | O_CLOEXEC));
  struct flock lock {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
  if (!file || fcntl(file.get(), F_GETLK, &lock) != 0 || lock.l_type == F_UNLCK) return 0;
  return lock.l_pid;
}

// Ends the process that holds the board, and waits until it holds it no more. False after 10 s.
bool EndHolder() {
  constexpr int kMostTries = 10000;
  const struct timespec millisecond { 0, 1000000 };
  for (int i = 0; i < kMostTries; ++i) {
    const pid_t holder = Holder();
    if (holder <= 0) return true;
    kill(holder, SIGKILL);
    nanosleep(&millisecond, nullptr);
  }
  return false;
}

// A factory reset that got as far as this reboot takes place now.
void LoadStores() {
  if (ReadEnv("returnfactory") != "1") return;
  CreateStores();
  if (!TakeFactoryStore()) std::fputs("reboot: no factory store can be taken\n", stderr);
  ForgetWrites();
  WriteEnv("returnfactory", "0");
  WriteEnv("factory_enable", "0");
}

}  // namespace

void PowerUp() {
  for (int index = 0; index < kFpgas; ++index) ClearCells(index);
  std::error_code ignored;
  std::filesystem::remove(FlagFile(), ignored);
}

void FinishFpgaLoad() { CreateText(FlagFile(), ""); }

bool FpgaHasLoaded() { return std::filesystem::exists(FlagFile()); }

int Reboot() {
  Trace(TraceKind::kShell, "0 reboot -f");
  const FileHandle mark(open((Folder() / kRebootMark).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644));
  if (!mark || !LockMark(mark) || !EndHolder()) {
    std::fputs("reboot: the process that holds the board does not end\n", stderr);
    return 1;
  }
  LoadStores();
  PowerUp();
  return 0;
}

void ForgetBrokenReset() {
  if (ReadEnv("returnfactory") != "1") return;
  for (const char* const key : {"returnfactory", "factory_enable", "firstboot"}) WriteEnv(key, "0");
}

bool TakeReboot() {
  const auto path = Folder() / kRebootMark;
  const FileHandle mark(open(path.c_str(), O_RDWR | O_CLOEXEC));
  if (!mark) return false;
  LockMark(mark);
  unlink(path.c_str());
  return true;
}

}  // namespace board
