// The files of the page, compiled into the program. Any thread.
#pragma once

#include <span>
#include <string_view>

namespace quivord::live {

struct PageFile {
  std::string_view name;  // "index.html"
  std::string_view content;
};

std::span<const PageFile> PageFiles();

}  // namespace quivord::live
