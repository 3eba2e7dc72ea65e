// Three whole days of a mixed plan, pass by pass, against a second form of its rules.
#include <fcntl.h>
#include <gtest/gtest.h>

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

#include "board/cards.h"
#include "stub/mcucmessagestruct_layout.h"
#include "support/board_kit.h"
#include "support/brightness_board.h"
#include "support/loop.h"
#include "support/slow_mix.h"

namespace {

using namespace ZEPH_MCUC;
using loop::kSecond_us;

constexpr int64_t kDay_s = 86'400;
constexpr int64_t kStart_s = 1'777'574'405;  // Thursday, 30 April 2026, 18:40:05
#ifdef QUIVORD_EMULATED                      // where three take ten minutes
constexpr int kDays = 1;
#else
constexpr int kDays = 3;
#endif
constexpr int kPasses = kDays * 86'400 * 5;

constexpr int kSunday0 = 1 << 4;  // Thursday where bit 0 is Sunday
constexpr int kMonday0 = 1 << 4;  // Friday where bit 0 is Monday

// The light of a day, and the hours in which the sensors fail.
std::string LightAt(int64_t seconds) {
  const int64_t second = seconds % kDay_s;
  if (second >= 9 * 3600 && second < 9 * 3600 + 1200) return "fail";
  if (second % 7200 >= 1800 && second % 7200 < 1812) return "fail";
  if (second % 7200 >= 3600 && second % 7200 < 3680) return "fail";
  const int64_t fromNoon = std::abs(second - 43'200);
  const int64_t lux = 24'000 - fromNoon + second / 10 % 7 * 900;
  return std::to_string(lux < 0 ? 0 : lux);
}

brightness_bytes::Mix Plan() {
  return {.nodes = {{0, 30, false, 0x7F, 10},
                    {6, 0, false, kMonday0 | 0x03, 30},
                    {8, 0, true, 0x7F, 0},
                    {12, 0, false, 0x20, 80},
                    {13, 15, false, 0x7F, 99, 0},
                    {14, 0, true, 0x7F, 0},
                    {18, 30, false, kSunday0 | 0x20, 60},
                    {23, 59, false, 0x7F, 5}},
          .sensors = {{0, 0, 0, 1}, {0, 3, 0, 1}},  // nobody answers on port 3
          .map = {{0, 4}, {64, 10}, {2112, 35}, {18496, 90}, {20000, 70}},
          .fallback = 45,
          .interval_s = 20,
          .readings = 3};
}

// How many packets have gone to the first receiving card, as the board's folder shows it.
class PacketCount {
 public:
  PacketCount() {
    board::CreateCards();
    const int file = open((board_kit::Named() / "cards").c_str(), O_RDONLY);
    bytes_ = static_cast<const uint8_t*>(mmap(nullptr, 48, PROT_READ, MAP_SHARED, file, 0));
    close(file);
  }
  uint32_t operator()() const { return DWQ_DECDW(bytes_ + 16 + 16); }

 private:
  const uint8_t* bytes_;
};

TEST(BrightnessDays, AMixSendsWhatTheRulesSay) {
  brightness_board::StartAt(kStart_s);
  const auto file = Plan().Bytes();
  ASSERT_LE(file.size(), 512U);
  // Stored, as an earlier run left it: the first pass starts it.
  board_kit::StoreFlash(brightness_board::kFlash, file);

  // Written over in place: a file cut and filled anew thousands of times keeps a disk busy.
  board_kit::Put("sensors/lux", "0\n");
  std::fstream sensor(board_kit::Named() / "sensors/lux");

  SlowMix rules(Plan(), kStart_s * kSecond_us);
  std::vector<int> wanted;
  std::string light;
  int passesThatSent = 0;
  const PacketCount packets;
  for (int pass = 0; pass < kPasses; ++pass) {
    const std::string now = LightAt(rules.time_us() / kSecond_us);
    if (now != light) sensor.seekp(0) << now << '\n' << std::flush;
    light = now;
    loop::Pass();
    const auto sent = rules.Pass(light);
    wanted.insert(wanted.end(), sent.begin(), sent.end());
    passesThatSent += sent.empty() ? 0 : 1;
    ASSERT_EQ(packets(), wanted.size()) << "what was sent in pass " << pass << " differs";
    ASSERT_EQ(loop::BoardTime_us(), rules.time_us())
        << "the time after pass " << pass << " differs";
  }
  EXPECT_EQ(brightness_board::SentValues(), wanted);
  EXPECT_GT(passesThatSent, 160 * kDays) << "the plan has hardly run";
}

}  // namespace
