// Runs the cases of a test program, each program on a fresh board folder of its own. A case may
// have started threads of the daemon, which never stop, so the process ends without destructors.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  std::string folder = std::filesystem::temp_directory_path() / "quivord-test-XXXXXX";
  if (mkdtemp(folder.data()) == nullptr) {
    std::perror("cannot make a board folder for the test");
    return 1;
  }
  setenv("QUIVORD_BOARD", folder.c_str(), 1);
  const int result = RUN_ALL_TESTS();
  std::error_code ignored;  // a folder that can't be removed is no failure of the test
  std::filesystem::remove_all(folder, ignored);
  std::fflush(nullptr);
  _exit(result);
}
