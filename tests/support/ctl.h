// quivordctl as people run it, on the board of this test.
#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "quivord/interface_version.h"
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

// An object that quivordctl printed, without the version that each of them carries.
inline nlohmann::json JsonOf(const std::string& line) {
  nlohmann::json object = nlohmann::json::parse(line, nullptr, false);
  EXPECT_EQ(object.value("interface", 0), quivord::kInterfaceVersion) << line;
  object.erase("interface");
  return object;
}

inline nlohmann::json CtlJson(Words words) {
  words.insert(words.begin(), "--json");
  return JsonOf(CtlOut(words));
}

}  // namespace support
