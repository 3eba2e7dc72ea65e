#include "markdown.h"

#include <cstdio>

namespace registers {
namespace {

std::string Line(const std::vector<std::string>& cells) {
  std::string line = "|";
  for (const std::string& cell : cells) line += " " + cell + (cell.empty() ? "|" : " |");
  return line + "\n";
}

}  // namespace

std::string Code(std::string_view text) { return "`" + std::string(text) + "`"; }

std::string Hex(std::uint32_t number, int digits) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%0*X", digits, number);
  return Code(text);
}

std::string Table(const std::vector<std::string>& head,
                  const std::vector<std::vector<std::string>>& rows) {
  std::string text = Line(head) + "|";
  for (std::size_t i = 0; i < head.size(); ++i) text += "---|";
  text += "\n";
  for (const auto& row : rows) text += Line(row);
  return text;
}

}  // namespace registers
