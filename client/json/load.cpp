#include "json/load.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>

namespace quivord::json {
namespace {

constexpr std::uintmax_t kMostFile =
    1 << 20;  // such files have some kilobytes, gamma tables some more

}  // namespace

Result<std::string> LoadText(const std::filesystem::path& file, const std::string& what) {
  const auto wrong = [&file](const std::string& text) {
    return Error{Trouble::kWrongUse, file.string() + ": " + text};
  };
  std::error_code failed;
  const std::uintmax_t size = std::filesystem::file_size(file, failed);
  if (failed) return wrong(failed.message());
  if (size > kMostFile) return wrong("far too large for " + what);
  std::ifstream stream(file, std::ios::binary);
  if (!stream) return wrong(std::strerror(errno));
  return std::string{std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace quivord::json
