// Brightness plans on a board that loses power, and plans that end while they are at work.
#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <thread>

#include "board/faults.h"
#include "board/power.h"
#include "proto/addr_hardwarebrightnessadjust.h"
#include "support/board_kit.h"
#include "support/brightness_board.h"
#include "support/child.h"
#include "support/loop.h"

namespace {

using namespace ZEPH_MCUC;
using namespace brightness_board;
using brightness_bytes::Data;
using brightness_bytes::Mix;

// One node all day, in a file of two pieces.
Data LongMix(int percent) {
  Mix mix{.nodes = std::vector<brightness_bytes::Node>(40, {0, 0, false, 0x7F, percent})};
  return mix.Bytes();
}

// A cut at any write of an upload leaves the old plan, the new one or none; a start after it sends
// nothing else. What the store holds then, and that a failed access does no more harm, is swept
// with all other operations.
TEST(BrightnessFaults, ACutLeavesTheOldPlanOrTheNewOneOrNone) {
  struct Case {
    std::function<void(bool fresh)> upload;
    int old, fresh;  // what the cards get
  };
  // Of the lists only one has colours: a table half old and half new must not run.
  const auto list = [](bool fresh) {
    UploadList(brightness_bytes::List({{8, 0, fresh ? 200 : 100}}, fresh));
  };
  const auto mix = [](bool fresh) { Upload(LongMix(fresh ? 60 : 20)); };
  const Case kCases[] = {{list, 100, 200}, {mix, 51, 153}};
  const auto run = [](const std::function<void()>& work) {
    return support::InChild([&] {
             StartAt(kNoon);
             work();
           })
        .status;
  };
  for (const Case& c : kCases) {
    std::set<int> met;
    int status = board::kCutStatus;
    for (int write = 1; status == board::kCutStatus; ++write) {
      SCOPED_TRACE("cut at write " + std::to_string(write));
      ASSERT_EQ(run([&] { c.upload(false); }), 0);
      status = run([&] {
        loop::Pass();
        board::SetFaultCount(board::Fault::kFlashCut, write);
        c.upload(true);
      });
      board::SetFaultCount(board::Fault::kFlashCut, 0);
      ASSERT_TRUE(status == 0 || status == board::kCutStatus) << status;
      Levels();
      ASSERT_EQ(run([] { loop::Passes(10); }), 0);
      for (const int value : Levels()) {
        EXPECT_TRUE(value == c.old || value == c.fresh) << value;
        met.insert(value);
      }
    }
    EXPECT_TRUE(met.contains(c.fresh)) << "the sweep never got through";
  }
}

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
  const Data list = brightness_bytes::List({{8, 0, 100}, {9, 0, 101}});
  const Case kCases[] = {
      {"a list", [&] { UploadList(list); }, 101, 0},
      {"another mix", [&] { Upload(next.Bytes()); }, 51, 1},
      {"switched off", [] { Write(12, {0}); }, -1, -1},
      {"no plan", [] { Write(0, {0}); }, -1, -1},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.what);
    loop::SetBoardTime_us((kNoon + 50) * loop::kSecond_us);
    Upload(ramps.Bytes());
    Levels();
    std::thread client([&] {
      for (int look = 0; look < 5000 && Levels().empty(); ++look) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
      }
      c.change();
    });
    loop::Passes(100);
    client.join();
    const std::set<int> sent = Levels();
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

// The sensors take their time, and the mix ends while they are asked: what they say is of no plan
// any more.
TEST(BrightnessFaults, WhatSensorsSayEndsWithTheirPlan) {
  board_kit::Configure("speed = 2\ntrace = card\n");  // each sensor takes a millisecond
  board_kit::Put("sensors/lux", "150");
  loop::Start(kNoon);
  loop::Pass();
  const Mix mix{.nodes = {{0, 0, true, 0x7F, 0}},
                .sensors = std::vector<brightness_bytes::Sensor>(8, {0, 0, 0, 1}),
                .map = {{100, 20}, {200, 60}}};
  Upload(mix.Bytes());
  for (int round = 0; round < 5; ++round) {
    Write(12, {1});
    const std::size_t before = board_kit::TraceLines().size();
    std::size_t ended = 0;
    std::thread client([&] {
      while (board_kit::TraceLines().size() == before) {
        std::this_thread::sleep_for(std::chrono::microseconds(200));
      }
      Write(12, {0});
      ended = board_kit::TraceLines().size();
    });
    while (board_kit::TraceLines().size() == before) loop::Pass();
    client.join();
    loop::Passes(10);
    const auto lines = board_kit::TraceLines();
    for (std::size_t i = ended; i < lines.size(); ++i) {
      EXPECT_FALSE(lines[i].starts_with("card W 1 ")) << lines[i];
    }
  }
}

}  // namespace
