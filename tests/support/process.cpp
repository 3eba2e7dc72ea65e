#include "support/process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <system_error>
#include <thread>

namespace support {
namespace {

using std::chrono::steady_clock;

std::vector<std::string> Environment(const std::vector<std::string>& own) {
  std::vector<std::string> all = own;  // the first of a name counts
  for (char** entry = environ; *entry != nullptr; ++entry) all.emplace_back(*entry);
  return all;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

Process::Process(const Start& start) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  if (start.out >= 0) posix_spawn_file_actions_adddup2(&actions, start.out, STDOUT_FILENO);
  if (start.err >= 0) posix_spawn_file_actions_adddup2(&actions, start.err, STDERR_FILENO);
  std::vector<std::string> command = start.command;
  std::vector<std::string> environment = Environment(start.environment);
  const int error = posix_spawn(&pid_, command.front().c_str(), &actions, nullptr,
                                Pointers(command).data(), Pointers(environment).data());
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::system_error(error, std::generic_category(), command.front());
}

Process::~Process() {
  Signal(SIGKILL);
  Wait(std::chrono::hours(1));
}

std::optional<int> Process::Wait(std::chrono::milliseconds limit) {
  const auto deadline = steady_clock::now() + limit;
  while (!status_.has_value()) {
    int raw = 0;
    if (waitpid(pid_, &raw, WNOHANG) == pid_) {
      status_ = WIFSIGNALED(raw) ? 128 + WTERMSIG(raw) : WEXITSTATUS(raw);
    } else if (steady_clock::now() >= deadline) {
      break;
    } else {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }
  return status_;
}

void Process::Signal(int number) {
  if (!status_.has_value()) kill(pid_, number);
}

}  // namespace support
