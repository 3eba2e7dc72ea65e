// Brightness plans on a board that fails, and plans that nobody in his right mind would send.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <random>
#include <set>
#include <thread>

#include "board/faults.h"
#include "proto/addr_hardwarebrightnessadjust.h"
#include "support/board_kit.h"
#include "support/brightness_bytes.h"
#include "support/loop.h"

namespace {

using namespace ZEPH_MCUC;
using board::Fault;
using brightness_bytes::Data;
using brightness_bytes::Mix;

constexpr uint32_t kBase = 0x0A000000;
constexpr uint32_t kFlash = 0xB8B000;
constexpr int64_t kNoon = 1'777'636'800;  // 1 May 2026, 12:00
constexpr int kHour = 3600 * 5;           // passes

void Write(uint32_t offset, const Data& data) {
  inprocess::Write(kBase + offset, data);
  inprocess::DrainQueue();
}

void Upload(const Data& file) {
  for (std::size_t at = 0; at < file.size(); at += 512) {
    const auto begin = file.begin() + static_cast<std::ptrdiff_t>(at);
    Write(
        static_cast<uint32_t>(at),
        {begin, begin + static_cast<std::ptrdiff_t>(std::min<std::size_t>(512, file.size() - at))});
  }
}

// A list of times as a client sends it: stored under no mode, then started by its mode byte.
void UploadList(Data table) {
  const Data mode = {table[0]};
  table[0] = 0;
  Upload(table);
  Write(0, mode);
}

// The values of the global brightness that cards got since line `from` of the trace.
std::set<int> Values(std::size_t* from) {
  std::set<int> values;
  const auto lines = board_kit::TraceLines();
  for (; *from < lines.size(); ++*from) {
    unsigned value = 0;
    if (std::sscanf(lines[*from].c_str(), "card W 1 %*u %*u 0x02000001 1 %*d %x", &value) == 1) {
      values.insert(static_cast<int>(value));
    }
  }
  return values;
}

// One node all day, in a file of two pieces.
Data LongMix(int percent) {
  Mix mix{.nodes = std::vector<brightness_bytes::Node>(40, {0, 0, false, 0x7F, percent})};
  return mix.Bytes();
}

TEST(BrightnessFaults, AnyAccessMayFailAndTheNextUploadWorks) {
  board_kit::Configure("speed = 2000\ntrace = card\n");
  loop::Start(kNoon);
  loop::Pass();
  std::size_t seen = 0;
  for (const auto& [fault, times] :
       {std::pair(Fault::kFlashWrite, 3), {Fault::kFlashRead, 3}, {Fault::kCardWrite, 1}}) {
    bool reached = true;
    int access = 0;
    for (; reached; ++access) {
      SCOPED_TRACE("fault " + std::to_string(static_cast<int>(fault)) + ", access " +
                   std::to_string(access));
      Upload(LongMix(20));
      ASSERT_EQ(Values(&seen).count(51), 1U);
      board::SetFaultCount(Fault::kSkip, access);
      board::SetFaultCount(fault, times);
      Upload(LongMix(60));
      UploadList(brightness_bytes::List({{8, 0, 100}}));
      loop::Passes(20);
      reached = board::FaultCount(fault) == 0;
      board::SetFaultCount(Fault::kSkip, 0);
      board::SetFaultCount(fault, 0);
      for (const int value : Values(&seen)) {
        EXPECT_TRUE(value == 51 || value == 153 || value == 100) << value;
      }
    }
    EXPECT_GT(access, 2) << "the sweep has met nothing";
  }
}

// Runs `work` in a process of its own, as a daemon that may be cut off; its exit status.
int InAProcess(const std::function<void()>& work) {
  const pid_t child = fork();
  if (child == 0) {
    loop::Start(kNoon);
    work();
    _exit(testing::Test::HasFailure() ? 1 : 0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// Cuts the power at each write of `upload` to flash, and starts the daemon on what is left: cards
// get nothing or `old` or `latest`.
void SweepCuts(const std::function<void()>& store, const std::function<void()>& upload, int old,
               int latest) {
  constexpr int kCut = 75;
  std::size_t seen = 0;
  std::set<int> met;
  int status = kCut;
  for (int write = 1; status == kCut; ++write) {
    SCOPED_TRACE("cut at write " + std::to_string(write));
    ASSERT_EQ(InAProcess([&] { store(); }), 0);
    status = InAProcess([&] {
      loop::Pass();
      board::SetFaultCount(Fault::kFlashCut, write);
      upload();
    });
    board::SetFaultCount(Fault::kFlashCut, 0);
    ASSERT_TRUE(status == 0 || status == kCut) << status;
    Values(&seen);
    ASSERT_EQ(InAProcess([] { loop::Passes(10); }), 0);
    for (const int value : Values(&seen)) {
      EXPECT_TRUE(value == old || value == latest) << value;
      met.insert(value);
    }
  }
  EXPECT_TRUE(met.contains(latest)) << "the sweep never got through";
}

TEST(BrightnessFaults, ACutLeavesTheOldListOrTheNewOneOrNone) {
  board_kit::Configure("speed = 2000\ntrace = card\n");
  // Colours and ports differ too: a table half old and half new must not run.
  const auto list = [](int value) { return brightness_bytes::List({{8, 0, value}}, value == 200); };
  SweepCuts([&] { UploadList(list(100)); }, [&] { UploadList(list(200)); }, 100, 200);
}

TEST(BrightnessFaults, ACutLeavesAMixThatStarts) {
  board_kit::Configure("speed = 2000\ntrace = card\n");
  SweepCuts([] { Upload(LongMix(20)); }, [] { Upload(LongMix(60)); }, 51, 153);
}

// --- A plan that comes during a ramp

TEST(BrightnessFaults, ARampEndsWithItsPlan) {
  using Brightness = Addr_HardWareBrightnessAdjust;
  board_kit::Configure("speed = 20\ntrace = card\n");  // the ramp takes 0.6 seconds
  loop::Start(kNoon);
  loop::Pass();
  const Mix ramps{.nodes = {{8, 0, false, 0x7F, 0}, {12, 1, false, 0x7F, 100}}};
  struct Case {
    const char* what;
    std::function<void()> change;
    int last;  // value that the cards got, below 0 for one of the ramp
    int armed;
  };
  const Mix next{.nodes = {{10, 0, false, 0x7F, 20}, {14, 0, false, 0x7F, 60}}};
  const Case kCases[] = {
      {"a list",
       [] {
         UploadList(brightness_bytes::List({{8, 0, 100}, {9, 0, 101}}));
       },
       101, 0},
      {"another mix", [&] { Upload(next.Bytes()); }, 51, 1},
      {"switched off", [] { Write(12, {0}); }, -1, -1},
      {"no plan", [] { Write(0, {0}); }, -1, -1},
  };
  std::size_t seen = 0;
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.what);
    loop::SetBoardTime_us((kNoon + 50) * loop::kSecond_us);
    Upload(ramps.Bytes());
    Values(&seen);
    std::thread client([&] {
      for (int look = 0; look < 5000 && Values(&seen).empty(); ++look) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
      }
      c.change();
    });
    loop::Passes(100);
    client.join();
    const std::set<int> sent = Values(&seen);
    EXPECT_FALSE(sent.contains(255)) << "the ramp went on to its end";
    unsigned last = 0;
    std::sscanf(board_kit::TraceLines().back().c_str(), "card W 1 %*u %*u 0x02000001 1 %*d %x",
                &last);
    if (c.last >= 0) {
      EXPECT_EQ(last, static_cast<unsigned>(c.last));
      EXPECT_EQ(Brightness::INT_Once, brightness::kArmed);
      EXPECT_EQ(Brightness::RtcIndex, c.armed) << "the ring belongs to the new plan";
    }
  }
}

// --- Random plans

using Random = std::mt19937;

int Pick(Random& random, int least, int most) {
  return std::uniform_int_distribution<int>(least, most)(random);
}

// A plan that says something, whatever it is.
Mix RandomMix(Random& random) {
  Mix mix;
  mix.mode = std::array{0x9A, 0x9B, 0x9C}[random() % 3];
  for (int i = Pick(random, 0, 40); i > 0; --i) {
    mix.nodes.push_back({Pick(random, 11, 14), Pick(random, 0, 59), random() % 2 == 0,
                         random() % 2 == 0 ? 0x7F : Pick(random, 0, 127), Pick(random, 0, 120),
                         random() % 4 == 0 ? Pick(random, 0, 3) : 1});
  }
  std::ranges::sort(mix.nodes, {}, [](const auto& node) { return node.hour * 60 + node.minute; });
  for (int i = Pick(random, 0, 9); i > 0; --i) {
    mix.sensors.push_back({Pick(random, 0, 1), Pick(random, 0, 10), 0, Pick(random, 0, 6)});
  }
  mix.sensors.insert(mix.sensors.begin(), {0, 0, 0, 1});
  for (int i = Pick(random, 0, 33); i > 0; --i) {
    mix.map.push_back({Pick(random, 0, 65535), Pick(random, 0, 120)});
  }
  std::ranges::sort(mix.map, {}, &brightness_bytes::Lux::lux);
  mix.fallback = Pick(random, -1, 120);
  mix.interval_s = Pick(random, 0, 4);
  mix.readings = Pick(random, 0, 17);
  mix.on = random() % 8 != 0;
  mix.runs = random() % 8 != 0;
  mix.gradual = false;
  return mix;
}

// What `mix` can ever send.
std::set<int> CanSend(const Mix& mix) {
  const auto value = [](int percent) { return 255 * std::min(percent, 100) / 100; };
  std::set<int> values;
  for (const auto& node : mix.nodes) values.insert(value(node.percent));
  if (mix.fallback >= 0) values.insert(value(mix.fallback));
  for (std::size_t i = 0; i < mix.map.size(); ++i) {
    values.insert(value(mix.map[i].percent));
    for (int p = mix.map[i].percent; i > 0 && p >= mix.map[i - 1].percent; --p) {
      values.insert(value(p));
    }
  }
  return values;
}

TEST(BrightnessFuzz, CardsGetOnlyWhatThePlanCanGive) {
  board_kit::Configure("speed = 2000\ntrace = card\n");
  loop::Start(kNoon);
  loop::Pass();
  std::size_t seen = 0;
  std::size_t values = 0;
  for (unsigned seed = 1; seed <= 40; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Random random(seed);
    const Mix mix = RandomMix(random);
    const std::set<int> may = CanSend(mix);
    loop::SetBoardTime_us((kNoon + 86'400 * Pick(random, 0, 6)) * loop::kSecond_us);
    Upload(mix.Bytes());
    for (int piece = 0; piece < 6; ++piece) {
      const bool fails = random() % 4 == 0;
      board_kit::Put("sensors/lux", fails ? "fail" : std::to_string(Pick(random, 0, 70'000)));
      if (random() % 4 == 0) Write(12, {static_cast<uint8_t>(random() % 2)});
      loop::Passes(kHour / 6);
    }
    for (const int value : Values(&seen)) {
      ++values;
      EXPECT_TRUE(may.contains(value)) << value;
    }
    Write(0, {0});
  }
  EXPECT_GT(values, 50U) << "the plans have hardly run";
}

// Bytes of which some look like a plan: positions near the area's end, counts of all kinds.
Data RandomBytes(Random& random) {
  Data bytes(static_cast<std::size_t>(Pick(random, 1, 512)));
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
  constexpr uint8_t kModes[] = {0x5B, 0x7D, 0x9A, 0x9B, 0x9C, 0};
  bytes[0] = kModes[random() % std::size(kModes)];
  if (bytes.size() < 18) return bytes;
  brightness_bytes::Put16(bytes, 1, random() % 3 == 0 ? bytes.size() : random() % 0x1500);
  for (const std::size_t at : {3, 5, 7, 10}) {
    brightness_bytes::Put16(bytes, at, random() % 2 == 0 ? random() % 0x1500 : random() % 0x180);
  }
  bytes[15] = static_cast<uint8_t>(random() % 20);
  return bytes;
}

TEST(BrightnessFuzz, RandomTablesAndWritesNeitherStopNorMisleadTheDaemon) {
  board_kit::Configure("speed = 2000\ntrace = card\n");
  board_kit::Put("sensors/lux", "1000");
  Random random(99);
  Data area(0x1400);
  for (uint8_t& byte : area) byte = static_cast<uint8_t>(random());
  loop::Start(kNoon);
  board_kit::StoreFlash(kFlash, area);
  std::size_t seen = 0;
  for (int round = 0; round < 60; ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    Write(random() % 2 == 0 ? 0 : random() % 0x1500, RandomBytes(random));
    if (random() % 3 == 0) Write(0, {RandomBytes(random)[0]});
    if (random() % 3 == 0) Write(static_cast<uint32_t>(random() % 18), {1});
    inprocess::Write(0x02400000, RandomBytes(random));
    loop::Passes(kHour / 60);
  }
  Values(&seen);
  UploadList(brightness_bytes::List({{0, 0, 123}}));
  EXPECT_EQ(Values(&seen), std::set<int>{123});
}

}  // namespace
