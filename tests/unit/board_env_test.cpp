// The environment store: how long its texts live, and threads that share it.
#include <gtest/gtest.h>
#include <platform/envcfg.h>

#include <thread>

#include "board/envstore.h"
#include "support/board_kit.h"

namespace board {
namespace {

using board_kit::Put;

constexpr const char* kFile = "usr/zeph/etc/envcfg/env";

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

}  // namespace
}  // namespace board
