// Recordings: their text, what their frames are to each other, what counts as a difference.
#include <gtest/gtest.h>

#include <random>

#include "record/compare.h"
#include "record/plan.h"
#include "record/recording.h"
#include "support/raw_peer.h"

namespace quivord::record {
namespace {

using namespace ZEPH_MCUC;
using support::FrameOf;
using Kind = Step::Kind;

Bytes Read(std::uint32_t address, std::uint16_t length) {
  return FrameOf({.registerAddress = address, .dataLength = length});
}

Bytes Write(std::uint32_t address, const Bytes& data) {
  return FrameOf({.code = JSHL_PROTOWRITE,
                  .registerAddress = address,
                  .dataLength = static_cast<std::uint16_t>(data.size())},
                 data);
}

Bytes Answer(std::uint32_t address, const Bytes& data, std::uint8_t ack = 0,
             std::uint8_t code = JSHL_PROTOREAD) {
  return FrameOf({.tag = PROTOCOL_HEADER_TAG_RESPONSE,
                  .ack = ack,
                  .code = code,
                  .registerAddress = address,
                  .dataLength = static_cast<std::uint16_t>(data.size())},
                 data);
}

TEST(Recording, SaysWhichLineIsWrong) {
  struct Case {
    const char* text;
    const char* fault;
  };
  constexpr Case kCases[] = {
      {"", "file: this is no recording"},
      {"123 bus > 0x1\n", "file:1: this is no recording"},
      {"quivord-recording 2\nslot 0\n", "file:1: a recording of version 2"},
      {"quivord-recording 1\nslot 256\n", "file:2: 'slot'"},
      {"quivord-recording 1\nslot 0\n1 > 0x0 00\n", "file:3: a frame is"},
      {"quivord-recording 1\nslot 0\n-1 > 0x1 00\n", "file:3: a frame is"},
      {"quivord-recording 1\nslot 0\n1 > 0x1\n", "file:3: the bytes"},
      {"quivord-recording 1\nslot 0\n1 > 0x1 0\n", "file:3: the bytes"},
      {"quivord-recording 1\nslot 0\n1 > 0x1 00(2:4)\n", "file:3: the bytes"},
      {"quivord-recording 1\nslot 0\n1 > 0x1 00(1:65536)\n", "file:3: the bytes"},
      {"quivord-recording 1\nslot 0\n9 > 0x1 00\n8 > 0x1 00\n", "file:4: the times go back"},
  };
  for (const Case& broken : kCases) {
    Recording recording;
    const std::string fault = ReadRecording(broken.text, "file", recording);
    EXPECT_TRUE(fault.starts_with(broken.fault)) << broken.text << "\n" << fault;
  }
}

TEST(Plan, AnswersBelongToTheOldestRequestOfTheirPeer) {
  constexpr std::uint32_t kOne = 0x7F0001, kTwo = 0x7F0002;
  const Recording recording{
      0,
      {{0, true, kOne, Read(0xF0000100, 1)},        // asked three times
       {1, true, kTwo, Read(0xF0000100, 1)},        //
       {2, false, kTwo, Answer(0xF0000100, {1})},   // to 1
       {3, false, kOne, Answer(0xF0000100, {1})},   // to 0
       {4, true, kOne, Read(0xF0000100, 1)},        //
       {5, false, kOne, Answer(0xF0000200, {1})},   // another register: a report
       {6, false, kOne, Answer(0xF0000100, {1})},   // to 4
       {7, false, kOne, Write(0xF0000100, {1})},    // passed on from another peer
       {8, true, kOne, Read(0xF0000100, 1)},        //
       {9, true, kOne, {1, 2}},                     // never answered
       {10, false, kOne, Answer(0xF0000100, {2})},  // to 8
       {11, true, kTwo, Write(0xF0000100, {3})},    //
       {12, true, kTwo, Read(0xF0000100, 1)},       // the same as 1, but after a write
       {13, false, kTwo, {}}}};
  const std::vector<Step> steps = {
      {Kind::kRequest, 0, 0, false},  {Kind::kRequest, 1, 0, false}, {Kind::kAnswer, 2, 1, false},
      {Kind::kAnswer, 3, 0, true},    {Kind::kRequest, 4, 0, false}, {Kind::kReport, 5, 0, false},
      {Kind::kAnswer, 6, 4, true},    {Kind::kReport, 7, 0, false},  {Kind::kRequest, 8, 0, false},
      {Kind::kRequest, 9, 0, false},  {Kind::kAnswer, 10, 8, false}, {Kind::kRequest, 11, 0, false},
      {Kind::kRequest, 12, 0, false}, {Kind::kReport, 13, 0, false}};
  const auto plan = PlanOf(recording);
  ASSERT_EQ(plan.size(), steps.size());
  for (std::size_t i = 0; i < steps.size(); ++i) EXPECT_EQ(plan[i], steps[i]) << i;
}

struct Told {
  Bytes recorded;
  Bytes now;
  std::vector<Place> places;
};

TEST(Compare, NamesTheRegistersThatDiffer) {
  const std::vector<MayDiffer> may = UsuallyDiffer();
  constexpr char kClock[] = "the device's clock";
  Bytes broken = Answer(0xF0000100, {1});
  broken.back() ^= 1;
  const Told kTold[] = {
      {Answer(0xF00001DE, {0x5A}), Answer(0xF00001DE, {0x5A}), {}},
      {Answer(0xF00001DE, {0x5A}),
       Answer(0xF00001DE, {0x00}),
       {{"0xF00001DE output", "open", "closed", ""}}},
      {Answer(0xF0000100, {1, 2, 3, 4}),
       Answer(0xF0000100, {1, 9, 8, 4}),
       {{"0xF0000101 testprintf Infomation", "02 03", "09 08", ""}}},
      // The high byte of the port's width, and the clock in the same page.
      {Answer(0x02000011, {0x26, 1, 2, 3, 4, 5, 0}),
       Answer(0x02000011, {0x26, 1, 2, 3, 4, 6, 0}),
       {{"0x02000011 time", "2026-01-02 03:04:05", "2026-01-02 03:04:06", kClock}}},
      {Answer(0x02000052, {2, 0, 1}),
       Answer(0x02000052, {1, 0, 1}),
       {{"0x02000052 port-0-width", "02", "01", ""}}},
      {Answer(0xF0000100, {1}),
       Answer(0xF0000100, {}, 4),
       {{"ack", "0 (done)", "4 (no such register, or not this operation or length there)", ""},
        {"data length", "1", "0", ""}}},
      {Answer(0xF0000100, {1}), broken, {{"checksum", "right", "wrong", ""}}},
      {{1, 2}, {3}, {{"frame", "01 02", "03", ""}}},
  };
  for (const Told& told : kTold) {
    const auto places = Differences(told.recorded, told.now, may);
    ASSERT_EQ(places.size(), told.places.size());
    for (std::size_t i = 0; i < places.size(); ++i) {
      EXPECT_EQ(places[i].where, told.places[i].where);
      EXPECT_EQ(places[i].recorded, told.places[i].recorded);
      EXPECT_EQ(places[i].now, told.places[i].now);
      EXPECT_EQ(places[i].why, told.places[i].why);
    }
  }
}

TEST(Compare, ReportsMayComeInAnyOrder) {
  const auto report = [](std::uint8_t value) {
    return Frame{value, false, 0x0A3900, Answer(0x0200001F, {value})};
  };
  const auto findings =
      CompareReports({report(1), report(2), report(2), report(3)},
                     {report(3), report(2), report(4), report(1), report(1)}, UsuallyDiffer());
  ASSERT_EQ(findings.size(), 3U);
  EXPECT_EQ(findings[0].kind, Finding::Kind::kMissingReport);
  EXPECT_EQ(findings[0].report, report(2).bytes);
  EXPECT_EQ(findings[1].kind, Finding::Kind::kNewReport);
  EXPECT_EQ(findings[1].report, report(4).bytes);
  EXPECT_FALSE(findings[0].allowed());
  EXPECT_FALSE(findings[1].allowed());
  EXPECT_TRUE(findings[2].allowed()) << "told again";
}

}  // namespace
}  // namespace quivord::record
