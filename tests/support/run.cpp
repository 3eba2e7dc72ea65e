#include "support/run.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <system_error>

#include "support/process.h"

namespace support {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

struct Pipe {
  std::array<int, 2> ends{-1, -1};

  Pipe() {
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
      throw std::system_error(errno, std::generic_category(), "pipe");
    }
  }
  ~Pipe() {
    CloseRead();
    CloseWrite();
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  void CloseRead() { Close(ends[0]); }
  void CloseWrite() { Close(ends[1]); }
  static void Close(int& end) {
    if (end >= 0) close(end);
    end = -1;
  }
};

// Takes what there is; the pipe's end closes it here.
void Drain(Pipe& pipe, std::string& text) {
  char bytes[4096];
  const ssize_t size = read(pipe.ends[0], bytes, sizeof bytes);
  if (size > 0) {
    text.append(bytes, static_cast<std::size_t>(size));
  } else if (size == 0 || errno != EINTR) {
    pipe.CloseRead();
  }
}

}  // namespace

RunResult Run(const std::vector<std::string>& command, const std::vector<std::string>& environment,
              milliseconds limit) {
  const auto deadline = steady_clock::now() + limit;
  const auto left = [&] {
    const auto time = std::chrono::duration_cast<milliseconds>(deadline - steady_clock::now());
    return std::max(time, milliseconds(0));
  };
  RunResult result;
  Pipe out;
  Pipe err;
  Process process({command, environment, out.ends[1], err.ends[1]});
  out.CloseWrite();
  err.CloseWrite();
  while (out.ends[0] >= 0 || err.ends[0] >= 0) {
    std::array<pollfd, 2> sources{{{out.ends[0], POLLIN, 0}, {err.ends[0], POLLIN, 0}}};
    if (poll(sources.data(), sources.size(), static_cast<int>(left().count())) == 0) break;
    if (sources[0].revents != 0) Drain(out, result.out);
    if (sources[1].revents != 0) Drain(err, result.err);
  }
  result.status = process.Wait(left()).value_or(-1);
  return result;
}

std::string Built(const std::string& program) { return QUIVORD_BUILD_DIR "/" + program; }

std::string Source(const std::string& file) { return QUIVORD_SOURCE_DIR "/" + file; }

int FromEnvironment(const char* name, int otherwise) {
  const char* const text = std::getenv(name);
  return text == nullptr ? otherwise : std::atoi(text);
}

}  // namespace support
