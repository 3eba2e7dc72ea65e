#include "fleet.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "program.h"
#include "status.h"

namespace board_tool {
namespace {

struct Board {
  std::string name;
  std::filesystem::path folder;
  pid_t runner = -1;  // its `quivord-board run`, -1 once that has ended
};

std::string Self() { return std::filesystem::read_symlink("/proc/self/exe"); }

std::vector<Board> Boards(const Fleet& fleet) {
  std::vector<Board> boards;
  for (int number = 1; number <= fleet.count; ++number) {
    const std::string name = (number < 10 ? "0" : "") + std::to_string(number);
    boards.push_back({name, fleet.folder / name});
  }
  return boards;
}

bool MakeIfMissing(const Board& board, const Fleet& fleet) {
  if (std::filesystem::exists(board.folder / "board.conf")) return true;
  std::vector<std::string> words = {"create", board.folder};
  words.insert(words.end(), fleet.settings.begin(), fleet.settings.end());
  int status = 0;
  const pid_t maker = Start(Self(), words, true);
  return maker >= 0 && waitpid(maker, &status, 0) == maker && ExitStatus(status) == kDone;
}

pid_t StartRunner(const Board& board, const Fleet& fleet) {
  std::vector<std::string> words = {"run", board.folder, "--"};
  words.insert(words.end(), fleet.daemon_options.begin(), fleet.daemon_options.end());
  return Start(Self(), words, true);
}

bool TakesConnections(const Board& board) {
  struct sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  const std::string path = board.folder / "run/mbus";
  if (path.size() >= sizeof address.sun_path) return false;
  std::memcpy(address.sun_path, path.data(), path.size());
  const int socket = ::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
  const bool takes =
      connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  close(socket);
  return takes;
}

// Boards whose runner has ended since the last look.
void NoteEnds(std::vector<Board>& boards) {
  int status = 0;
  for (pid_t ended = 0; (ended = waitpid(-1, &status, WNOHANG)) > 0;) {
    const auto board = std::find_if(boards.begin(), boards.end(),
                                    [ended](const Board& b) { return b.runner == ended; });
    if (board == boards.end()) continue;
    board->runner = -1;
    std::fprintf(stderr, "quivord-board: board %s ended with status %d\n", board->name.c_str(),
                 ExitStatus(status));
  }
}

std::size_t Running(const std::vector<Board>& boards) {
  return static_cast<std::size_t>(
      std::count_if(boards.begin(), boards.end(), [](const Board& b) { return b.runner >= 0; }));
}

void Stop(std::vector<Board>& boards) {
  for (const Board& board : boards) {
    if (board.runner >= 0) kill(board.runner, SIGTERM);
  }
  for (Board& board : boards) {
    if (board.runner >= 0) waitpid(board.runner, nullptr, 0);
    board.runner = -1;
  }
}

// Stays until it is told to stop or no board is left.
int Watch(std::vector<Board>& boards, const Fleet& fleet) {
  constexpr auto kLook = std::chrono::milliseconds(50), kIdle = std::chrono::milliseconds(3600000);
  bool said = false;
  while (Running(boards) > 0) {
    const int signal = NextSignal(Clock::now() + (said ? kIdle : kLook));
    if (signal == SIGINT || signal == SIGTERM) {
      Stop(boards);
      return kDone;
    }
    NoteEnds(boards);
    const auto ready = [](const Board& board) {
      return board.runner < 0 || TakesConnections(board);
    };
    if (said || Running(boards) == 0 || !std::all_of(boards.begin(), boards.end(), ready)) continue;
    std::printf("%zu boards run in %s; 'quivordctl --board %s --all ping' asks them all\n",
                Running(boards), fleet.folder.c_str(), fleet.folder.c_str());
    std::fflush(stdout);
    said = true;
  }
  std::fprintf(stderr, "quivord-board: no board is left\n");
  return kFailed;
}

}  // namespace

int RunFleet(const Fleet& fleet) {
  std::vector<Board> boards = Boards(fleet);
  for (const Board& board : boards) {
    if (!MakeIfMissing(board, fleet)) return kFailed;
  }
  BlockWatched();
  for (Board& board : boards) {
    board.runner = StartRunner(board, fleet);
    if (board.runner < 0) {
      Stop(boards);
      return kFailed;
    }
  }
  return Watch(boards, fleet);
}

}  // namespace board_tool
