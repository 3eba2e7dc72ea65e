# Writes OUT, a source that holds the FILES of the page as bytes, by name.
set(arrays "")
set(rows "")
set(number 0)
foreach(file ${FILES})
  get_filename_component(name ${file} NAME)
  file(READ ${file} hex HEX)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
  string(APPEND arrays "constexpr unsigned char kFile${number}[] = {${bytes}};\n")
  string(APPEND rows "    {\"${name}\", {reinterpret_cast<const char*>(kFile${number}), sizeof kFile${number}}},\n")
  math(EXPR number "${number} + 1")
endforeach()
file(WRITE ${OUT} "// Written by embed.cmake.
#include \"live/pages.h\"

namespace quivord::live {
namespace {
${arrays}
const PageFile kFiles[] = {
${rows}};
}  // namespace

std::span<const PageFile> PageFiles() { return kFiles; }

}  // namespace quivord::live
")
