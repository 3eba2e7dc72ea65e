#include "singleinstance.h"

#include <fcntl.h>
#include <platform/system.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "mcuctrace.h"

namespace ZEPH_MCUC {
namespace {

constexpr std::size_t kLinkSize = 1024;

// The base name of the running program, empty where it can't be told.
std::string ProgramName() {
  char path[kLinkSize];
  const ssize_t length = readlink("/proc/self/exe", path, sizeof(path) - 1);
  if (length <= 0) return "";
  path[length] = '\0';
  const char* slash = std::strrchr(path, '/');
  return slash == nullptr ? "" : slash + 1;
}

[[noreturn]] void GiveUp(const char* what, const std::string& file) {
  const char* reason = std::strerror(errno);
  MCUC_LOG(kLogError, "=== runSingleInstance ===" << what << file.c_str() << " error : " << reason);
  std::fprintf(stderr, "quivord: %s%s: %s\n", what, platform::DevicePath(file).c_str(), reason);
  std::exit(1);
}

}  // namespace

int runSingleInstance() {
  const std::string name = ProgramName();
  if (name.empty()) GiveUp("cannot tell the program's name", "");
  const std::string path = "/var/run/" + name + ".pid";
  const int file = open(platform::DevicePath(path).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  if (file < 0) GiveUp("cannot open ", path);
  struct flock lock {};
  lock.l_type = F_WRLCK;
  if (fcntl(file, F_SETLK, &lock) != 0) {
    const int code = errno;
    if (code != EACCES && code != EAGAIN) GiveUp("cannot lock ", path);
    MCUC_LOG(kLogError, "=== runSingleInstance ===already locked ,"
                            << path.c_str() << " error : " << std::strerror(code));
    std::fprintf(stderr, "quivord: already running, stop that one first: %s is locked: %s\n",
                 platform::DevicePath(path).c_str(), std::strerror(code));
    close(file);
    return 0;
  }
  const std::string pid = std::to_string(getpid());
  if (ftruncate(file, 0) != 0 ||
      write(file, pid.data(), pid.size()) != static_cast<ssize_t>(pid.size())) {
    GiveUp("cannot write ", path);
  }
  return 1;
}

}  // namespace ZEPH_MCUC
