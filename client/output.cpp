#include "output.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "file_fault.h"
#include "quivord/interface_version.h"

namespace ctl {
namespace {

constexpr std::chrono::seconds kBetweenLines{5};
constexpr std::size_t kBar = 30;  // characters

constexpr const char* kColours[] = {"\033[32m", "\033[1;31m", "\033[33m"};  // by tone
constexpr char kPlain[] = "\033[0m";

int lost = 0;  // why a line has not reached standard output, as an errno

void PrintLine(const std::string& line) {
  const bool gone = std::printf("%s\n", line.c_str()) >= 0 && std::fflush(stdout) == 0;
  if (!gone && lost == 0) lost = errno;
}

// Every object says which interface it keeps to.
std::string Dump(nlohmann::json object) {
  object["interface"] = quivord::kInterfaceVersion;
  return object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

bool ShowsColours(int descriptor) {
  const char* const unwanted = std::getenv("NO_COLOR");
  const char* const kind = std::getenv("TERM");
  const bool dumb = kind == nullptr || std::string_view(kind) == "dumb";
  return (unwanted == nullptr || *unwanted == '\0') && !dumb && isatty(descriptor) == 1;
}

std::string Coloured(Tone tone, const std::string& text) {
  return kColours[static_cast<std::size_t>(tone)] + text + kPlain;
}

}  // namespace

std::string LostOutput() {
  const bool gone = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
  return gone ? "" : quivord::CannotWrite("standard output", lost);
}

Output::Output(bool json)
    : json_(json),
      terminal_(isatty(STDERR_FILENO) == 1),
      coloured_(ShowsColours(STDOUT_FILENO)),
      spoken_(Clock::now()) {}

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
  const std::string who =
      ShowsColours(STDERR_FILENO) ? Coloured(Tone::kBad, "quivordctl:") : "quivordctl:";
  std::fprintf(stderr, "%s %s\n", who.c_str(), text.c_str());
  if (json_) PrintLine(Dump({{"error", text}, {"status", status}}));
}

std::string Output::Paint(Tone tone, const std::string& text) const {
  return coloured_ ? Coloured(tone, text) : text;
}

void Output::Step(const std::string& text) const {
  if (json_) return;
  ClearProgress();
  std::fprintf(stderr, "%s\n", text.c_str());
  spoken_ = Clock::now();
}

void Output::Progress(const std::string& text) const {
  if (json_) return;
  if (terminal_) {
    std::fprintf(stderr, "\r\033[K%s", text.c_str());
    progress_ = true;
  } else if (Clock::now() - spoken_ >= kBetweenLines) {
    Step(text);
  }
}

void Output::Progress(const std::string& what, std::size_t done, std::size_t all) const {
  const std::size_t parts = all == 0 ? 0 : std::min(done, all) * 100 / all;
  const std::string percent = std::to_string(parts) + " %";
  if (!terminal_) return Progress(what + ": " + percent);
  const std::size_t full = parts * kBar / 100;
  Progress(what + " [" + std::string(full, '#') + std::string(kBar - full, '.') + "] " + percent);
}

void Output::ClearProgress() const {
  if (progress_) std::fputs("\r\033[K", stderr);
  progress_ = false;
}

}  // namespace ctl
