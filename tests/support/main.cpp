// Runs the cases of a test program, each program on a fresh board folder of its own. They run in a
// child process: threads of the daemon never stop, so the folder can only go once the process that
// has them is gone, however it ended. For a debugger: follow the child.
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

[[noreturn]] void RunCases(const std::string& folder) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);  // whoever ends the parent means the cases
  setenv("QUIVORD_BOARD", folder.c_str(), 1);
  const int result = RUN_ALL_TESTS();
  std::fflush(nullptr);
  _exit(result);  // no destructors under running threads
}

int StatusOf(pid_t child) {
  int status = 0;
  if (waitpid(child, &status, 0) != child) return 1;
  if (WIFEXITED(status)) return WEXITSTATUS(status);
  std::fprintf(stderr, "the cases were ended by signal %d\n", WTERMSIG(status));
  return 128 + WTERMSIG(status);
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  std::string folder = std::filesystem::temp_directory_path() / "quivord-test-XXXXXX";
  if (mkdtemp(folder.data()) == nullptr) {
    std::perror("cannot make a board folder for the test");
    return 1;
  }
  const pid_t child = fork();
  if (child == 0) RunCases(folder);
  const int result = child < 0 ? 1 : StatusOf(child);
  std::error_code ignored;  // a folder that can't be removed is no failure of the test
  std::filesystem::remove_all(folder, ignored);
  return result;
}
