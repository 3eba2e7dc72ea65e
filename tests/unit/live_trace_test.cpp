#include <gtest/gtest.h>

#include <fstream>

#include "live/log.h"
#include "live/tail.h"
#include "support/board_kit.h"

namespace quivord::live {
namespace {

using Lines = std::vector<std::string>;

class LiveTail : public testing::Test {
 protected:
  void SetUp() override { std::filesystem::create_directories(board_kit::Named()); }
  void Append(const std::string& text) { std::ofstream(file_, std::ios::app) << text; }

  const std::filesystem::path file_ = board_kit::Named() / "tail.txt";
  Tail tail_{file_};
};

TEST_F(LiveTail, GivesLinesOnceAndOnlyWhenTheyHaveEnded) {
  EXPECT_EQ(tail_.Look(), Lines{}) << "there is no file yet";
  Append("one\ntwo\nthr");
  EXPECT_EQ(tail_.Look(), (Lines{"one", "two"}));
  EXPECT_EQ(tail_.Look(), Lines{});
  Append("ee\n\n");
  EXPECT_EQ(tail_.Look(), (Lines{"three", ""}));
}

TEST_F(LiveTail, BeginsNearTheEndOfWhatWasThere) {
  Append(std::string(Tail::kMostRead, 'a') + "\nlast\n");
  EXPECT_EQ(tail_.Look(), Lines{"last"});
  EXPECT_EQ(tail_.passedOver(), 0U) << "nobody waited for it";
}

struct Told {
  const char* line;
  LogEntry::Kind kind;
  const char* text;
};

// Lines as a board has written them.
constexpr auto kRequest = LogEntry::Kind::kRequest;
constexpr Told kTold[] = {
    {"11 bus > 0x007f773a 20 55aa00000000000000000000de0100f001002557", kRequest,
     "0x7F773A reads output"},
    {"12 bus > 0x007f773a 21 55aa00000000000000000100de01000201005a9256", kRequest,
     "0x7F773A writes output = open"},
    {"13 bus > 0x007f7740 21 55aa0000000001ffffff01000100000201009af158", kRequest,
     "0x7F7740 writes every card of all ports: 0x02000001 = 9a"},
    {"14 bus > 0x017f7740 21 55aa000000000203040001000100000201009af158", kRequest,
     "0x7F7740 writes multi-function card 4 of port 3: 0x02000001 = 9a"},
    {"15 bus > 0x000a3900 20 55aa000000000000000000000000000a01006055", kRequest,
     "owd reads 0x0A000000 lightAdjustType"},
    {"16 bus < 0x000a3900 21 aa550000000000000000000001000002010099f255", LogEntry::Kind::kReport,
     "brightness was sent to the receiving cards 153"},
    {"17 bus < 0x000a3900 21 aa55000000000000000000001f0000020100017855", LogEntry::Kind::kReport,
     "ports with a copper link, of 0 to 3: 0"},
};

TEST(LiveLog, SaysInWordsWhatALineTells) {
  for (const Told& told : kTold) {
    Log log;
    log.Take(told.line);
    ASSERT_EQ(log.entries().size(), 1U) << told.line;
    EXPECT_EQ(log.entries()[0].kind, told.kind) << told.line;
    EXPECT_EQ(log.entries()[0].text, told.text);
    EXPECT_EQ(log.entries()[0].at_us, std::atoi(told.line));
  }
}

TEST(LiveLog, AReplyIsNoReportAndARefusalIsTold) {
  Log log;
  log.Take("11 bus > 0x007f773a 20 55aa00000000000000000000de0100f001002557");
  log.Take("12 bus < 0x007f773a 21 aa5500000000000000000000de0100f00100002557");
  EXPECT_EQ(log.entries().size(), 1U) << "what was asked for is answered";
  log.Take("13 bus > 0x007f773a 20 55aa00000000000000000000de0100f001002557");
  log.Take("14 bus < 0x007f773a 20 aa5504000000000000000000de0100f000002557");
  ASSERT_EQ(log.entries().size(), 3U);
  EXPECT_EQ(log.entries()[2].kind, LogEntry::Kind::kRefusal);
  EXPECT_TRUE(log.entries()[2].text.starts_with("0x7F773A is refused output: "))
      << log.entries()[2].text;
}

TEST(LiveLog, PassesOverWhatIsNoLineOfTheBus) {
  const std::string whole = kTold[1].line;
  Log log;
  for (std::size_t length = 0; length < whole.size() - 6; ++length)
    log.Take(whole.substr(0, length));
  const auto frames = log.entries().size();
  EXPECT_LE(frames, 2U) << "the shortest frame, and it";
  for (const char* line :
       {"", " ", "bus", "1 bus", "1 bus > ", "x bus > 0x1 20 0", "1 fpga W 1 0x0 1 ok 00",
        "1 bus ? 0x007f773a 20 55aa00000000000000000000de0100f001002557",
        "1 bus > 007f773a 20 55aa00000000000000000000de0100f001002557",
        "1 bus > 0xfffffffff 20 55aa00000000000000000000de0100f001002557",
        "1 bus > 0x1 20 zzzz00000000000000000000de0100f001002557", "1 bus > 0x1 0 -"}) {
    log.Take(line);
  }
  EXPECT_EQ(log.entries().size(), frames);
}

}  // namespace
}  // namespace quivord::live
