// The environment store: opening and closing, texts and how long they live, the file behind it.
#include <gtest/gtest.h>
#include <platform/envcfg.h>
#include <platform/system.h>

#include <regex>
#include <thread>

#include "board/envstore.h"
#include "board/files.h"
#include "support/board_kit.h"

namespace board {
namespace {

using board_kit::Put;

constexpr const char* kFile = "usr/zeph/etc/envcfg/env";

std::string File() { return ReadWhole(Folder() / kFile).value_or("none"); }

TEST(BoardEnv, OnlyAnOpenStoreGivesAndTakes) {
  const auto shut = [] { return envcfg_getenv("a") == nullptr && envcfg_setenv("a", "2") == -1; };
  Put(kFile, "a=1\n");
  EXPECT_TRUE(shut());
  EXPECT_EQ(envcfg_closeenv(), -1);
  SetFaultCount(Fault::kEnvOpen, 1);
  EXPECT_EQ(envcfg_openenv(), -1);
  EXPECT_TRUE(shut());
  envcfg_closeenv();
  ASSERT_EQ(envcfg_openenv(), 0);
  SetFaultCount(Fault::kEnvOpen, -1);
  EXPECT_EQ(envcfg_openenv(), -1);
  EXPECT_EQ(envcfg_setenv("a", "2"), 0) << "the outer open stands";
  envcfg_closeenv();
  EXPECT_STREQ(envcfg_getenv("a"), "2");
  EXPECT_EQ(envcfg_closeenv(), 0);
  EXPECT_TRUE(shut());
  EXPECT_EQ(File(), "a=2\n");
}

TEST(BoardEnv, SetChangesOneLineAndKeepsTheRest) {
  const struct {
    const char* before;
    const char* key;
    const char* value;
    const char* after;
  } kCases[] = {
      {"", "a", "1", "a=1\n"},         {"a=1\nab=2\n", "a", "x=y z", "a=x=y z\nab=2\n"},
      {"ab=2", "a", "", "ab=2\na=\n"}, {"noise\n\na=1\na=2\n", "a", "3", "noise\n\na=3\n"},
      {"a=1\n", "a=b", "1", nullptr},  {"a=1\n", "a\nb", "1", nullptr},
      {"a=1\n", "", "1", nullptr},     {"a=1\n", "a", "1\nb=2", nullptr},
  };
  ASSERT_EQ(envcfg_openenv(), 0);
  for (const auto& c : kCases) {
    Put(kFile, c.before);
    const bool taken = c.after != nullptr;
    EXPECT_EQ(envcfg_setenv(c.key, c.value), taken ? 0 : -1) << c.key;
    EXPECT_EQ(File(), taken ? c.after : c.before);
    if (taken) {
      EXPECT_STREQ(envcfg_getenv(c.key), c.value);
    }
  }
  EXPECT_EQ(envcfg_setenv(nullptr, "1"), -1);
  EXPECT_EQ(envcfg_setenv("a", nullptr), -1);
  EXPECT_EQ(envcfg_getenv(nullptr), nullptr);
}

TEST(BoardEnv, TextLivesUntilTheOwnThreadsLastClose) {
  Put(kFile, "a=first\n");
  ASSERT_EQ(envcfg_openenv(), 0);
  const char* const first = envcfg_getenv("a");
  std::thread([] {
    ASSERT_EQ(envcfg_openenv(), 0);
    EXPECT_EQ(envcfg_setenv("a", "second"), 0);
    EXPECT_EQ(envcfg_closeenv(), 0);
  }).join();
  EXPECT_STREQ(envcfg_getenv("a"), "second");
  EXPECT_STREQ(first, "first");
  envcfg_closeenv();
}

TEST(BoardEnv, SeveralThreadsAndTheToolLoseNothing) {
  std::vector<std::thread> writers;
  for (int i = 0; i < 4; ++i) {
    writers.emplace_back([i] {
      const auto key = "k" + std::to_string(i);
      ASSERT_EQ(envcfg_openenv(), 0);
      for (int n = 0; n < 50; ++n) {
        const auto value = std::to_string(n);
        // Two of the writers go the tool's way.
        const bool done =
            i < 2 ? envcfg_setenv(key.c_str(), value.c_str()) == 0 : WriteEnv(key, value);
        ASSERT_TRUE(done);
        ASSERT_STREQ(envcfg_getenv(key.c_str()), value.c_str());
      }
      envcfg_closeenv();
    });
  }
  for (auto& writer : writers) writer.join();
  for (int i = 0; i < 4; ++i) EXPECT_EQ(ReadEnv("k" + std::to_string(i)), "49");
}

TEST(BoardEnv, DateAndTimeAreTheBoardsLocalOnes) {
  setenv("TZ", "XYZ-2", 1);
  tzset();
  struct timeval time {
    1767225599, 0
  };  // 2025-12-31 23:59:59 UTC
  ASSERT_EQ(platform::SetTimeOfDay(&time, nullptr), 0);
  char date[50] = "", clock[50] = "";
  ASSERT_EQ(envcfg_get_date_ymd(date), 0);
  ASSERT_EQ(envcfg_get_date_hms(clock), 0);
  EXPECT_STREQ(date, "2026-01-01");
  EXPECT_TRUE(std::regex_match(clock, std::regex("0(1:59:59|2:00:0\\d)"))) << clock;
  EXPECT_EQ(envcfg_get_date_ymd(nullptr), -1);
}

}  // namespace
}  // namespace board
