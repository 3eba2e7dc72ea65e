#include "board/envstore.h"

#include "board/board.h"
#include "board/files.h"
#include "board/text.h"

namespace board {
namespace {

std::filesystem::path EnvFile() { return Folder() / "usr/zeph/etc/envcfg/env"; }

bool IsFor(std::string_view line, std::string_view key) {
  return line.size() > key.size() && line.starts_with(key) && line[key.size()] == '=';
}

}  // namespace

std::optional<std::string> ReadEnv(std::string_view key) {
  const auto text = ReadWhole(EnvFile());
  for (std::string_view rest = text ? *text : std::string_view(); !rest.empty();) {
    const auto line = TakeUntil(rest, '\n');
    if (IsFor(line, key)) return std::string(line.substr(key.size() + 1));
  }
  return std::nullopt;
}

std::optional<std::string> WithSetting(std::string_view lines, std::string_view key,
                                       std::string_view value) {
  if (key.empty() || key.find_first_of("=\n") != key.npos || value.find('\n') != value.npos) {
    return std::nullopt;
  }
  std::string setting(key);
  setting.append("=").append(value).append("\n");
  std::string fresh;
  bool is_set = false;
  while (!lines.empty()) {
    const auto line = TakeUntil(lines, '\n');
    if (!IsFor(line, key)) {
      fresh.append(line).append("\n");
    } else if (!is_set) {
      fresh.append(setting);
      is_set = true;
    }
  }
  return is_set ? fresh : fresh + setting;
}

bool SetLineOfFile(const std::string& file, std::string_view key, std::string_view value) {
  const FileHandle lock = TryLockFolder(std::filesystem::path(file).parent_path());
  if (!lock) return false;
  const auto fresh = WithSetting(ReadWhole(file).value_or(""), key, value);
  return fresh && ReplaceWhole(file, *fresh);
}

bool WriteEnv(std::string_view key, std::string_view value) {
  return SetLineOfFile(EnvFile(), key, value);
}

}  // namespace board
