// Text in columns.
#pragma once

#include <string>
#include <vector>

namespace ctl {

// The rows with every column as wide as its widest cell, two blanks between columns, no blanks at
// the end of a line, no line feed at the end. Rows may have fewer cells than others.
std::string Columns(const std::vector<std::vector<std::string>>& rows);

}  // namespace ctl
