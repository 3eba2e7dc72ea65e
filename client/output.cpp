#include "output.h"

#include <unistd.h>

#include <cstdio>

namespace ctl {
namespace {

void PrintLine(const std::string& line) {
  std::printf("%s\n", line.c_str());
  std::fflush(stdout);
}

std::string Dump(const nlohmann::json& object) {
  return object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace

Output::Output(bool json) : json_(json), terminal_(isatty(STDERR_FILENO) == 1) {}

void Output::Show(const std::string& text, const nlohmann::json& object) const {
  ClearProgress();
  if (json_) {
    PrintLine(Dump(object));
  } else if (!text.empty()) {
    PrintLine(text);
  }
}

void Output::Fault(const std::string& text, int status) const {
  ClearProgress();
  std::fprintf(stderr, "quivordctl: %s\n", text.c_str());
  if (json_) PrintLine(Dump({{"error", text}, {"status", status}}));
}

void Output::Step(const std::string& text) const {
  if (json_) return;
  ClearProgress();
  std::fprintf(stderr, "%s\n", text.c_str());
}

void Output::Progress(const std::string& text) const {
  if (json_ || !terminal_) return;
  std::fprintf(stderr, "\r\033[K%s", text.c_str());
  progress_ = true;
}

void Output::ClearProgress() const {
  if (progress_) std::fputs("\r\033[K", stderr);
  progress_ = false;
}

}  // namespace ctl
