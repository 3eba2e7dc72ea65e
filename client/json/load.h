// Files that people give a command, whole; their size is looked at first.
#pragma once

#include <filesystem>
#include <string>

#include "quivord/result.h"

namespace quivord::json {

// The bytes of `file`; kWrongUse, with the file's name, where it can't be read or is far too large
// for `what`, "a plan" say.
Result<std::string> LoadText(const std::filesystem::path& file, const std::string& what);

// The content of `file` through `parse`, which gives a `Result`; its errors get the file's name.
template <class Parse>
auto Load(const std::filesystem::path& file, const std::string& what, Parse parse)
    -> decltype(parse(std::string())) {
  const auto text = LoadText(file, what);
  if (!text) return text.error();
  auto read = parse(text.value());
  if (!read) return Error{read.error().trouble, file.string() + ": " + read.error().text};
  return read;
}

}  // namespace quivord::json
