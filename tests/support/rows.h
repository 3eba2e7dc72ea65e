// Tables of cases as text, so that a case is a line:
//
//   name     | before  | write
//   a change | 1f8:01  | 28:6400
//
// Blanks around a column don't count, nor do lines without a column; missing columns are empty. A
// line that begins with '|' goes on with the row before.
#pragma once

#include <sstream>
#include <string>
#include <vector>

namespace support {

inline std::string Trimmed(const std::string& text) {
  const std::size_t begin = text.find_first_not_of(' ');
  return begin == text.npos ? "" : text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

inline std::vector<std::vector<std::string>> Rows(std::size_t columns, const std::string& table) {
  std::vector<std::vector<std::string>> rows;
  std::istringstream lines(table);
  for (std::string line; std::getline(lines, line);) {
    line = Trimmed(line);
    if (line.empty()) continue;
    if (line[0] != '|') rows.emplace_back();
    std::istringstream cells(line[0] == '|' ? line.substr(1) : line);
    for (std::string cell; std::getline(cells, cell, '|');) rows.back().push_back(Trimmed(cell));
  }
  for (auto& row : rows) row.resize(columns);
  return rows;
}

// The words of a text, which blanks part.
inline std::vector<std::string> WordsOf(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

}  // namespace support
