// A device's character devices.
#include <fcntl.h>
#include <platform/system.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace platform {

int OpenDevice(const char* path, int flags) { return open(path, flags | O_CLOEXEC); }

int ControlDevice(int device, unsigned long request, void* argument) {
  return ioctl(device, request, argument);
}

void CloseDevice(int device) { close(device); }

}  // namespace platform
