// A device's own start and its paths: they are what they say.
#include <platform/system.h>

namespace platform {

// The root file system and the boot scripts have made everything before the daemon starts.
void Initialize() {}

std::string DevicePath(std::string_view path) { return std::string(path); }

}  // namespace platform
