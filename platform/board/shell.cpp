// Device paths and shell commands: everything stays within the board folder.
#include <fcntl.h>
#include <platform/system.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "board/board.h"
#include "board/cards.h"
#include "board/command.h"
#include "board/files.h"
#include "board/stores.h"
#include "posix/shell.h"

namespace board {
namespace {

constexpr int kRefused = 126;
constexpr int kNotThere = 127;

bool IsProgram(const std::filesystem::path& file) {
  struct stat status {};
  return stat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
         access(file.c_str(), X_OK) == 0;
}

// 0 where the command may run, else the status that stands for its refusal.
int Refusal(const Command& command) {
  if (command.strays) {
    std::fprintf(stderr, "board: refused, a path lies outside the board folder: %s\n",
                 command.shown.c_str());
    return kRefused;
  }
  for (const std::string_view stand_in : command.stand_ins) {
    const auto file = Folder() / stand_in;
    if (IsProgram(file)) continue;
    std::fprintf(stderr, "board: not run, %s is missing or not executable: %s\n", file.c_str(),
                 command.shown.c_str());
    return kNotThere;
  }
  return 0;
}

// The environment with the board's programs in front of the PC's and the board by its name.
class Environment {
 public:
  Environment() {
    const char* const path = std::getenv("PATH");
    own_ = {
        "PATH=" + (Folder() / "bin").string() + ":" + (path != nullptr ? path : "/usr/bin:/bin"),
        "QUIVORD_BOARD=" + Folder().string()};
    for (char** entry = environ; *entry != nullptr; ++entry) {
      const std::string_view text = *entry;
      if (!text.starts_with("PATH=") && !text.starts_with("QUIVORD_BOARD=")) {
        entries_.push_back(*entry);
      }
    }
    for (std::string& entry : own_) entries_.push_back(entry.data());
    entries_.push_back(nullptr);
  }

  char* const* get() const { return entries_.data(); }

 private:
  std::vector<std::string> own_;
  std::vector<char*> entries_;
};

void TraceCommand(int status, const std::string& shown) {
  if (Tracing(TraceKind::kShell)) Trace(TraceKind::kShell, std::to_string(status) + " " + shown);
}

struct OpenCommand {
  pid_t process;
  std::string shown;
};

struct OpenCommands {
  std::mutex lock;
  std::map<std::FILE*, OpenCommand> by_stream;
};

OpenCommands& Running() {
  static OpenCommands& running = *std::make_unique<OpenCommands>().release();
  return running;
}

// Starts the command with its output in a pipe; null where that fails.
std::FILE* StartPiped(const Command& command) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return nullptr;
  FileHandle reading(ends[0]);
  const FileHandle writing(ends[1]);
  const pid_t process = posix::StartShell(command.run.c_str(), writing.get(), Environment().get());
  if (process < 0) return nullptr;
  std::FILE* const stream = fdopen(reading.get(), "r");
  if (stream == nullptr) {
    posix::WaitForShell(process);
    return nullptr;
  }
  reading.Release();
  const std::lock_guard hold(Running().lock);
  Running().by_stream[stream] = {process, command.shown};
  return stream;
}

}  // namespace
}  // namespace board

namespace platform {

void Initialize() {
  board::CreateStores();
  board::OpenCards();
}

std::string DevicePath(std::string_view path) { return board::InFolder(path, board::Folder()); }

int RunShell(const char* command) {
  const auto prepared = board::BoardCommand(command, board::Folder());
  int status = board::Refusal(prepared);
  if (status == 0) {
    const pid_t process = posix::StartShell(prepared.run.c_str(), -1, board::Environment().get());
    status = process < 0 ? -1 : posix::WaitForShell(process);
  }
  board::TraceCommand(status, prepared.shown);
  return status;
}

std::FILE* OpenShell(const char* command) {
  const auto prepared = board::BoardCommand(command, board::Folder());
  const int refusal = board::Refusal(prepared);
  std::FILE* const stream = refusal == 0 ? board::StartPiped(prepared) : nullptr;
  if (stream == nullptr) board::TraceCommand(refusal != 0 ? refusal : -1, prepared.shown);
  return stream;
}

int CloseShell(std::FILE* stream) {
  board::OpenCommand command;
  {
    const std::lock_guard hold(board::Running().lock);
    auto entry = board::Running().by_stream.extract(stream);
    if (!entry) return -1;
    command = std::move(entry.mapped());
  }
  std::fclose(stream);
  const int status = posix::WaitForShell(command.process);
  board::TraceCommand(status, command.shown);
  return status;
}

}  // namespace platform
