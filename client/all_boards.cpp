#include "all_boards.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <system_error>

#include "command.h"

namespace ctl {
namespace {

namespace fs = std::filesystem;

constexpr int kQuiet_ms = 200;  // after which what has come is shown

// One of a board's two outputs.
struct Stream {
  fs::path board;
  std::FILE* to;          // standard output or error
  int from;               // the pipe, -1 once it has ended
  bool json;              // whether its lines are objects
  std::string text = {};  // not yet shown
};

// The line with its board: docs/schema/all.json describes what an object gets.
std::string Tagged(const Stream& stream, const std::string& line) {
  const std::string name = stream.board.filename();
  if (stream.json) {
    nlohmann::json object = nlohmann::json::parse(line, nullptr, false);
    if (object.is_object()) {
      object["board"] = name;
      object["folder"] = stream.board;
      return object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
    }
  }
  return name + "  " + line;
}

// Shows the whole lines, or all where no more will come.
void Show(Stream& stream) {
  if (stream.from < 0 && !stream.text.empty() && stream.text.back() != '\n') stream.text += '\n';
  std::size_t begin = 0;
  for (std::size_t end; (end = stream.text.find('\n', begin)) != std::string::npos;
       begin = end + 1) {
    std::fprintf(stream.to, "%s\n", Tagged(stream, stream.text.substr(begin, end - begin)).c_str());
  }
  stream.text.erase(0, begin);
  std::fflush(stream.to);
}

void Take(Stream& stream) {
  std::array<char, 4096> piece;
  const ssize_t got = read(stream.from, piece.data(), piece.size());
  if (got > 0) {
    stream.text.append(piece.data(), static_cast<std::size_t>(got));
  } else if (got == 0 || errno != EINTR) {
    close(stream.from);
    stream.from = -1;
  }
}

// Shows the boards that have ended, in their order, up to the first that is still at work.
void ShowEnded(std::vector<Stream>& streams) {
  for (Stream& stream : streams) {
    if (stream.from >= 0) return;
    Show(stream);
  }
}

// Shows what the boards say until none says any more.
void Relay(std::vector<Stream>& streams) {
  for (;;) {
    std::vector<struct pollfd> ready;
    std::vector<Stream*> open;
    for (Stream& stream : streams) {
      if (stream.from < 0) continue;
      ready.push_back({stream.from, POLLIN, 0});
      open.push_back(&stream);
    }
    if (open.empty()) return;
    if (poll(ready.data(), ready.size(), kQuiet_ms) <= 0) {
      for (Stream& stream : streams) Show(stream);
      continue;
    }
    for (std::size_t i = 0; i < open.size(); ++i) {
      if (ready[i].revents != 0) Take(*open[i]);
    }
    ShowEnded(streams);
  }
}

std::array<int, 2> Pipe() {
  std::array<int, 2> ends;
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category());
  return ends;
}

int StatusOf(pid_t process) {
  int status = 0;
  if (waitpid(process, &status, 0) != process || !WIFEXITED(status)) {
    return static_cast<int>(Exit::kNoAnswer);
  }
  return WEXITSTATUS(status);
}

}  // namespace

std::vector<fs::path> BoardsIn(const fs::path& folder) {
  std::vector<fs::path> boards;
  std::error_code fault;
  for (const auto& entry : fs::directory_iterator(folder, fault)) {
    if (fs::exists(entry.path() / "board.conf", fault)) boards.push_back(entry.path());
  }
  std::sort(boards.begin(), boards.end());
  return boards;
}

int RunOnAll(const std::vector<fs::path>& boards, bool json,
             const std::function<int(const fs::path& board)>& command) {
  std::vector<Stream> streams;
  std::vector<pid_t> processes;
  for (const fs::path& board : boards) {
    const auto out = Pipe();
    const auto err = Pipe();
    const pid_t process = fork();
    if (process < 0) throw std::system_error(errno, std::generic_category());
    if (process == 0) {
      dup2(out[1], STDOUT_FILENO);
      dup2(err[1], STDERR_FILENO);
      const int status = command(board);
      std::fflush(nullptr);
      _exit(status);
    }
    close(out[1]);
    close(err[1]);
    processes.push_back(process);
    streams.push_back({board, stdout, out[0], json});
    streams.push_back({board, stderr, err[0], false});
  }
  Relay(streams);
  int worst = 0;
  for (const pid_t process : processes) worst = std::max(worst, StatusOf(process));
  return worst;
}

}  // namespace ctl
