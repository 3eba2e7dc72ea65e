// quivordctl as people run it, on the board of this test.
#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/board_kit.h"
#include "support/rows.h"
#include "support/run.h"

namespace support {

using Words = std::vector<std::string>;

inline RunResult Ctl(const Words& words) {
  Words command = {Built("quivordctl")};
  command.insert(command.end(), words.begin(), words.end());
  return Run(command);
}

// What a command that has to succeed prints, without the last line feed.
inline std::string CtlOut(const Words& words) {
  const RunResult run = Ctl(words);
  EXPECT_EQ(run.status, 0) << run.out << run.err;
  return run.out.substr(0, run.out.find_last_not_of('\n') + 1);
}

inline nlohmann::json CtlJson(Words words) {
  words.insert(words.begin(), "--json");
  return nlohmann::json::parse(CtlOut(words), nullptr, false);
}

// Runs a row of `Rows`: the words, the exit status, and what is said on either output. A word's "%"
// stands for the board's folder; `front` comes first.
inline RunResult ExpectCtl(std::vector<std::string> row, Words words = {}) {
  row.resize(3);
  for (std::string word : WordsOf(row[0])) {
    const std::size_t folder = word.find('%');
    if (folder != word.npos) word.replace(folder, 1, board_kit::Named().string());
    words.push_back(word);
  }
  const RunResult run = Ctl(words);
  EXPECT_EQ(std::to_string(run.status), row[1]) << row[0] << ": " << run.err;
  EXPECT_NE((run.out + run.err).find(row[2]), std::string::npos) << row[2] << " is not in\n"
                                                                 << run.out << run.err;
  return run;
}

}  // namespace support
