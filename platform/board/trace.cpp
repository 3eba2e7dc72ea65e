// The wire trace: one line an access, in order over all kinds.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <memory>
#include <mutex>

#include "board/board.h"
#include "board/files.h"
#include "board/folder.h"

namespace board {
namespace {

struct TraceFile {
  std::mutex order;  // the times ascend in the file
  FileHandle file;
};

TraceFile& Log() {
  static TraceFile& log = *[] {
    auto fresh = std::make_unique<TraceFile>();
    const auto path = Folder() / "trace.log";
    fresh->file = FileHandle(open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644));
    if (!fresh->file) Fail("cannot open " + path.string());
    return fresh.release();
  }();
  return log;
}

}  // namespace

bool Tracing(TraceKind kind) {
  return (Config().trace_kinds >> static_cast<unsigned>(kind) & 1U) != 0;
}

std::unique_lock<std::mutex> TraceOrder(TraceKind kind) {
  static std::array<std::mutex, kTraceKinds> orders;
  if (!Tracing(kind)) return {};
  return std::unique_lock(orders[static_cast<std::size_t>(kind)]);
}

void Trace(TraceKind kind, std::string_view words) {
  if (!Tracing(kind)) return;
  using std::chrono::duration_cast;
  using std::chrono::microseconds;
  TraceFile& log = Log();
  std::string line;
  const std::lock_guard hold(log.order);
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  line.append(std::to_string(duration_cast<microseconds>(now).count())).append(" ");
  line.append(TraceKindName(static_cast<int>(kind))).append(" ").append(words);
  std::replace(line.begin(), line.end(), '\n', ' ');  // a line stays a line, whatever the words
  line.append("\n");
  ssize_t written = 0;
  do {  // a full disk loses the line: the access itself has happened
    written = write(log.file.get(), line.data(), line.size());
  } while (written < 0 && errno == EINTR);
}

std::string Hex(const void* data, std::size_t size) {
  constexpr char kDigits[] = "0123456789abcdef";
  if (size == 0) return "-";
  const auto* const bytes = static_cast<const std::uint8_t*>(data);
  std::string text(size * 2, '0');
  for (std::size_t i = 0; i < size; ++i) {
    text[2 * i] = kDigits[bytes[i] >> 4];
    text[2 * i + 1] = kDigits[bytes[i] & 15];
  }
  return text;
}

}  // namespace board
