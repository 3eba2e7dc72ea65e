#include "support/daemon.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <system_error>
#include <thread>
#include <utility>

#include "support/run.h"

namespace support {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr std::uint32_t kAskingTask = 0x7E0001;    // nobody else's
constexpr std::uint32_t kQuietRegister = 0x10000;  // answered without data, touches nothing

struct File {
  const int descriptor;
  ~File() { close(descriptor); }
  int get() const { return descriptor; }
};

File OpenOutput(const std::filesystem::path& path) {
  const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
  if (descriptor < 0) throw std::system_error(errno, std::generic_category(), path.string());
  return {descriptor};
}

Start HowToStart(const Daemon::Options& options, int output) {
  Start start{.command = {options.program.empty() ? Built("quivord") : options.program},
              .environment = {"QUIVORD_BOARD=" + options.board.string()},
              .out = output,
              .err = output};
  // Under the thread sanitizer a report ends the daemon, so that a test notices.
  if (std::getenv("TSAN_OPTIONS") == nullptr) {
    start.environment.emplace_back("TSAN_OPTIONS=halt_on_error=1");
  }
  start.command.insert(start.command.end(), options.arguments.begin(), options.arguments.end());
  start.environment.insert(start.environment.end(), options.environment.begin(),
                           options.environment.end());
  return start;
}

bool Answers(const Daemon& daemon) {
  auto client = daemon.Connect(kAskingTask);
  if (!client) return false;
  return static_cast<bool>(
      client.value()->Call({.address = kQuietRegister, .length = 1}, milliseconds(500)));
}

}  // namespace

Daemon::Daemon(Options options)
    : options_(std::move(options)), process_(HowToStart(options_, OpenOutput(output()).get())) {}

bool Daemon::WaitUntilItAnswers() {
  const auto deadline = steady_clock::now() + options_.limit;
  while (!process_.Wait(milliseconds(0)).has_value() && steady_clock::now() < deadline) {
    if (Answers(*this)) return true;
    std::this_thread::sleep_for(milliseconds(10));
  }
  return false;
}

void Daemon::Kill() {
  process_.Signal(SIGKILL);
  process_.Wait(std::chrono::seconds(30));
}

std::string Daemon::OutputText() const {
  std::ifstream file(output());
  return {std::istreambuf_iterator<char>(file), {}};
}

quivord::Result<std::unique_ptr<quivord::Client>> Daemon::Connect(std::uint32_t id) const {
  return quivord::Client::Connect({.board = options_.board, .id = id});
}

}  // namespace support
