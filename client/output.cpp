#include "output.h"

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

void Output::Show(const std::string& text, const nlohmann::json& object) const {
  if (json_) {
    PrintLine(Dump(object));
  } else if (!text.empty()) {
    PrintLine(text);
  }
}

void Output::Fault(const std::string& text, int status) const {
  std::fprintf(stderr, "quivordctl: %s\n", text.c_str());
  if (json_) PrintLine(Dump({{"error", text}, {"status", status}}));
}

}  // namespace ctl
