// quivordctl as people run it, on the board of this test.
#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

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

}  // namespace support
