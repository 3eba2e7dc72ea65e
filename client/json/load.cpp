#include "json/load.h"

#include <cerrno>
#include <fstream>
#include <iterator>

#include "file_fault.h"

namespace quivord::json {
namespace {

constexpr std::uintmax_t kMostFile =
    1 << 20;  // such files have some kilobytes, gamma tables some more

}  // namespace

Result<std::string> LoadText(const std::filesystem::path& file, const std::string& what) {
  const auto wrong = [](const std::string& text) { return Error{Trouble::kWrongUse, text}; };
  std::error_code failed;
  const std::uintmax_t size = std::filesystem::file_size(file, failed);
  if (failed) return wrong(CannotRead(file, failed.value()));
  if (size > kMostFile) return wrong(file.string() + ": far too large for " + what);
  std::ifstream stream(file, std::ios::binary);
  if (!stream) return wrong(CannotRead(file, errno));
  return std::string{std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace quivord::json
