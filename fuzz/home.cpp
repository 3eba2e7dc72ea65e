#include "home.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace home {
namespace {

std::filesystem::path Ground() {
  return std::filesystem::is_directory("/dev/shm") ? "/dev/shm"
                                                   : std::filesystem::temp_directory_path();
}

}  // namespace

std::filesystem::path Make() {
  std::string name = Ground() / "quivord-fuzz-XXXXXX";
  if (mkdtemp(name.data()) == nullptr) {
    std::perror(name.c_str());
    std::exit(1);
  }
  static const std::string made = name;
  std::atexit([] {
    std::error_code ignored;
    std::filesystem::remove_all(made, ignored);
  });
  setenv("QUIVORD_BOARD", made.c_str(), 1);
  setenv("TZ", "UTC", 1);
  return made;
}

}  // namespace home
