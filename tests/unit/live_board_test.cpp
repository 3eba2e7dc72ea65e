#include <gtest/gtest.h>

#include "board/cardfile.h"
#include "live/cardlist.h"
#include "live/describe.h"
#include "live/guard.h"
#include "live/orders.h"
#include "support/wall_bytes.h"

namespace quivord::live {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes CardFile(const board::Settings& settings) {
  const std::string text = board::NewCardFile(settings);
  return {text.begin(), text.end()};
}

CardList ListOf(const Bytes& file) { return ReadCards(std::span(file).subspan(kCardHeader)); }

TEST(LiveCards, NeighboursThatShowTheSameAreOneRun) {
  board::Settings settings;
  settings.devices = {};
  settings.devices[0] = {5, 2, 0, 1};
  settings.devices[15] = {1, 0, 0, 0};
  Bytes file = CardFile(settings);
  const auto card = [&file](std::size_t n) {
    return &file[kCardHeader + n * board::kCardRecordSize];
  };
  card(2)[board::card_record::kBrightness] = 7;
  card(4)[board::card_record::kTakesPart] = 0;
  const CardList list = ListOf(file);
  EXPECT_EQ(list.devices, (std::array<std::size_t, 4>{6, 2, 0, 1}));
  ASSERT_EQ(list.ports.size(), 2U);
  const auto& runs = list.ports.at(0);
  ASSERT_EQ(runs.size(), 4U);
  EXPECT_EQ(runs[0], (CardRun{2, {255, {255, 255, 255, 255}, 0, 0, true, 128, 128}}));
  EXPECT_EQ(runs[1].state.brightness, 7);
  EXPECT_EQ(runs[2].count, 1U);
  EXPECT_FALSE(runs[3].state.takesPart);
  EXPECT_EQ(list.ports.at(15).size(), 1U);
}

// Whatever the folder holds has a meaning, and no null, since a patch can't say one.
TEST(LiveDescribe, AnyBytesHaveAMeaning) {
  const std::function<bool(const Json&)> has_null = [&](const Json& json) -> bool {
    if (json.is_structured()) return std::any_of(json.begin(), json.end(), has_null);
    return json.is_null();
  };
  std::uint32_t seed = 1;
  for (int i = 0; i < 20; ++i) {
    Snapshot snapshot;
    const auto fill = [&seed, i](auto& bytes) {
      for (auto& byte : bytes)
        byte =
            i == 0 ? 0xFF : static_cast<std::uint8_t>((seed = seed * 1664525 + 1013904223) >> 24);
    };
    fill(snapshot.cells);
    for (auto& part : snapshot.device.Parts()) fill(part.bytes);
    fill(snapshot.picture.pattern);
    for (auto& table : snapshot.picture.gamma) fill(table);
    fill(snapshot.picture.request);
    fill(snapshot.plan);
    constexpr std::uint8_t kModes[] = {0x5B, 0x7D, 0x9A, 0x9B, 0x9C};
    snapshot.plan[0] = kModes[i % 5];
    snapshot.cards.resize(100 * board::kCardRecordSize);
    fill(snapshot.cards);
    fill(snapshot.edids[0]);
    snapshot.offset_us = i == 1 ? INT64_MAX : i == 2 ? INT64_MIN : 0;
    snapshot.now_us = 1700000000000000;
    const State state = Describe(snapshot, nullptr, {});
    EXPECT_FALSE(has_null(Document(state)));
  }
}

TEST(LiveDescribe, ASectionThatLooksTheSameIsTakenOver) {
  Snapshot before;
  const State first = Describe(before, nullptr, {});
  Snapshot after = before;
  after.lux = "5";
  const State second = Describe(after, &before, first);
  for (std::size_t i = 0; i < kSections; ++i) {
    const bool outside = std::string_view(SectionNames()[i]) == "outside";
    EXPECT_EQ(first[i] != second[i], outside) << SectionNames()[i];
  }
}

TEST(LiveDescribe, TimeAtASpeedCountsFromTheDaemonsStart) {
  Snapshot snapshot;
  snapshot.now_us = 1000;
  snapshot.offset_us = 7;
  EXPECT_EQ(BoardTime_us(snapshot), 1007);
  snapshot.settings.speed = 10;
  EXPECT_EQ(BoardTime_us(snapshot), 1007) << "no daemon, no speed";
  snapshot.daemon = {1, 900};
  EXPECT_EQ(BoardTime_us(snapshot), 900 + 100 * 10 + 7);
}

TEST(LiveGuard, HostsThatNameUs) {
  struct Case {
    const char* host;
    bool allowed;
  };
  for (const auto& [host, allowed] : {Case{"127.0.0.1:8181", true},
                                      {"localhost:8181", true},
                                      {"localhost", true},
                                      {"[::1]:8181", true},
                                      {"192.168.1.5:80", true},
                                      {"wall.lan:8181", true},
                                      {"", false},
                                      {"elsewhere.example", false},
                                      {"localhost.elsewhere.example:8181", false},
                                      {"127.0.0.1.elsewhere.example", false},
                                      {"[::1", true},
                                      {"[", false},
                                      {":8181", false}}) {
    EXPECT_EQ(HostAllowed(host, "wall.lan"), allowed) << host;
  }
}

}  // namespace
}  // namespace quivord::live
