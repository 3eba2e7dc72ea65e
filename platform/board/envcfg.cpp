// The environment store as the daemon opens and reads it.
#include <platform/envcfg.h>
#include <platform/system.h>

#include <atomic>
#include <forward_list>
#include <vector>

#include "board/board.h"
#include "board/envstore.h"

namespace board {
namespace {

std::atomic<int> g_open_count{0};  // opens of all threads that succeeded and aren't closed

// What one thread has opened and read. Each open makes a level, a failed one too, since its caller
// closes it all the same; so a failed inner open takes nothing from the outer one.
class EnvAccess {
 public:
  ~EnvAccess() {
    while (Close()) continue;
  }

  void Open(bool done) {
    levels_.push_back(done);
    if (done) ++g_open_count;
  }

  bool Close() {
    if (levels_.empty()) return false;
    if (levels_.back()) --g_open_count;
    levels_.pop_back();
    if (levels_.empty()) texts_.clear();
    return true;
  }

  const char* Keep(std::string text) { return texts_.emplace_front(std::move(text)).c_str(); }

 private:
  std::vector<bool> levels_;
  std::forward_list<std::string> texts_;  // handed out, valid until the last close
};

EnvAccess& ThisThread() {
  thread_local EnvAccess access;
  return access;
}

int PrintLocal(char* buffer, const char* format) {
  constexpr std::size_t kBufferSize = 50;
  const std::time_t now = platform::Time();
  struct tm local {};
  char text[kBufferSize];
  if (buffer == nullptr || localtime_r(&now, &local) == nullptr) return -1;
  if (std::strftime(text, sizeof text, format, &local) == 0) return -1;
  std::snprintf(buffer, kBufferSize, "%s", text);
  return 0;
}

}  // namespace
}  // namespace board

int envcfg_openenv() {
  const bool done = !board::TakeFault(board::Fault::kEnvOpen);
  board::ThisThread().Open(done);
  return done ? 0 : -1;
}

const char* envcfg_getenv(const char* key) {
  if (key == nullptr) return nullptr;
  const auto order = board::TraceOrder(board::TraceKind::kEnv);
  auto value = board::g_open_count > 0 ? board::ReadEnv(key) : std::nullopt;
  if (order) board::Trace(board::TraceKind::kEnv, std::string("get ") + key);
  return value ? board::ThisThread().Keep(std::move(*value)) : nullptr;
}

int envcfg_setenv(const char* key, const char* value) {
  if (key == nullptr || value == nullptr) return -1;
  const auto order = board::TraceOrder(board::TraceKind::kEnv);
  const bool done = board::g_open_count > 0 && board::WriteEnv(key, value);
  if (order) board::Trace(board::TraceKind::kEnv, std::string("set ") + key + " " + value);
  return done ? 0 : -1;
}

int envcfg_closeenv() { return board::ThisThread().Close() ? 0 : -1; }

int envcfg_get_date_ymd(char* buffer) { return board::PrintLocal(buffer, "%Y-%m-%d"); }

int envcfg_get_date_hms(char* buffer) { return board::PrintLocal(buffer, "%H:%M:%S"); }
