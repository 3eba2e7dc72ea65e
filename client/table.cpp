#include "table.h"

#include <algorithm>

namespace ctl {
namespace {

using Rows = std::vector<std::vector<std::string>>;

// What a cell takes up: a colour's escape sequence takes nothing.
std::size_t WidthOf(const std::string& cell) {
  std::size_t width = 0;
  for (std::size_t i = 0; i < cell.size(); ++i) {
    if (cell[i] == '\033') {
      i = std::min(cell.find('m', i), cell.size() - 1);
    } else {
      ++width;
    }
  }
  return width;
}

std::vector<std::size_t> Widths(const Rows& rows) {
  std::vector<std::size_t> widths;
  for (const auto& row : rows) {
    if (row.size() > widths.size()) widths.resize(row.size());
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], WidthOf(row[i]));
  }
  return widths;
}

}  // namespace

std::string Columns(const Rows& rows) {
  const auto widths = Widths(rows);
  std::string text;
  for (const auto& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      line += row[i] + std::string(widths[i] - WidthOf(row[i]) + 2, ' ');
    }
    line.resize(line.find_last_not_of(' ') + 1);  // an empty line: npos + 1 is 0
    text += (text.empty() ? "" : "\n") + line;
  }
  return text;
}

}  // namespace ctl
