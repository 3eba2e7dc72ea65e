// Pieces of Markdown.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace registers {

// "0x1F0" with at least `digits` digits, as code.
std::string Hex(std::uint32_t number, int digits = 1);

// `text` as code.
std::string Code(std::string_view text);

// A table with `head` above `rows`, a line feed at the end. Cells are text, not Markdown, apart
// from code.
std::string Table(const std::vector<std::string>& head,
                  const std::vector<std::vector<std::string>>& rows);

}  // namespace registers
