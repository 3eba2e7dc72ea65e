// The brightness spaces and the plans behind them, on a board: what reaches image, flash, FPGA and
// cards, by write, by pass of the loop and by start.
#include <gtest/gtest.h>

#include <fstream>

#include "board/faults.h"
#include "proto/addr_hardwarebrightnessadjust.h"
#include "proto/data_common.h"
#include "support/board_kit.h"
#include "support/brightness_board.h"
#include "support/loop.h"

namespace {

using namespace ZEPH_MCUC;
using namespace brightness_board;
using Brightness = Addr_HardWareBrightnessAdjust;
using brightness_bytes::Data;
using brightness_bytes::List;
using brightness_bytes::Mix;
using Values = std::vector<int>;
using Lines = std::vector<std::string>;

constexpr int kSecond = 5;  // passes

Data Stored(uint32_t offset, std::size_t length) {
  Data bytes(length);
  std::ifstream store(board_kit::Named() / "usr/zeph/etc/envcfg/brmpara", std::ios::binary);
  store.seekg(kFlash + offset);
  store.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(length));
  return bytes;
}

// A whole area under no mode, each byte another than its neighbours.
Data Counted() {
  Data area(0x1400);
  for (std::size_t i = 1; i < area.size(); ++i) area[i] = static_cast<uint8_t>(i * 7);
  return area;
}

// The writes to the FPGA in the trace so far, to one of these addresses.
Lines BusWrites(const std::string& buffer, const std::string& control) {
  Lines bus;
  for (const std::string& line : board_kit::TraceLines()) {
    if (!line.starts_with("fpga W 1 ")) continue;
    if (line.substr(9, 10) == buffer || line.substr(9, 10) == control)
      bus.push_back(line.substr(9));
  }
  return bus;
}

Mix TwoNodes() {
  return {.nodes = {{8, 0, false, 0x7F, 20}, {20, 0, false, 0x7F, 60}}, .gradual = false};
}

Mix SensorAllDay() {
  return {.nodes = {{0, 0, true, 0x7F, 0}},
          .sensors = {{0, 0, 0, 1}},
          .map = {{100, 20}, {200, 60}},
          .fallback = 30,
          .gradual = false};
}

TEST(BrightnessSpace, AListStartsByItsWriteAndSendsEachPortAndItsColours) {
  StartAt(kNoon, "card fpga");
  loop::Pass();  // links, and what is stored: no plan
  EXPECT_EQ(Write(0, List({{8, 0, 100, 0x0A}, {20, 0, 200}}, true)), 0);
  EXPECT_EQ(Sent(), (Lines{"1 0x02000001 64", "1 0x02000002 01020304", "3 0x02000001 64",
                           "3 0x02000002 01020304"}));
  EXPECT_EQ(Stored(0, 4), (Data{0, 0, 0, 0})) << "the table of a list lives in memory";
  // The buffer's packet goes out between the even and the odd value of its port.
  EXPECT_EQ(BusWrites("0x00300000", "0x00100000"),
            (Lines{"0x00100000 1 ok 02", "0x00300000 18 ok 0101ffff0100020000020400010203041302",
                   "0x00100000 1 ok 03", "0x00100000 1 ok 06",
                   "0x00300000 18 ok 0103ffff0100020000020400010203041502", "0x00100000 1 ok 07"}));
}

TEST(BrightnessSpace, AListMovesOnWhenItsTimeArrives) {
  StartAt(kFriday + 8 * 3600 - 5);
  loop::Pass();
  Write(0, List({{8, 0, 100}, {12, 0, 0, 0}, {20, 0, 200}}));
  EXPECT_EQ(Sent(), (Lines{"0 0x02000001 c8"})) << "the evening's node";
  loop::Passes(15 * kSecond);
  EXPECT_EQ(Sent(), (Lines{"0 0x02000001 64"}));
  loop::SetBoardTime_us((kFriday + 20 * 3600 - 1) * loop::kSecond_us);
  loop::Passes(15 * kSecond);
  EXPECT_TRUE(Sent().empty()) << "noon was skipped, and the ring waits for it";
  loop::SetBoardTime_us((kNoon + 86'400) * loop::kSecond_us);
  loop::Passes(15 * kSecond);
  EXPECT_TRUE(Sent().empty()) << "noon drives no port";
  EXPECT_EQ(Brightness::RtcIndex, 2);
}

TEST(BrightnessSpace, TheModeByteAloneKeepsTheStoredFileAndStartsIt) {
  StartAt(kNoon);
  loop::Pass();
  Data table = List({{8, 0, 100}});
  table[0] = 0;  // stored, and no plan in force
  Upload(table);
  EXPECT_TRUE(Sent().empty());
  EXPECT_EQ(Stored(0, 512), table);
  Write(0, {0x5B});
  EXPECT_EQ(Sent(), (Lines{"0 0x02000001 64"}));
  table[0] = 0x5B;
  EXPECT_EQ(Stored(0, 512), table);
  Write(0, {0x11});
  EXPECT_EQ(Stored(0, 1), (Data{0x11}));
  EXPECT_FALSE(Brightness::ProgrammableAdjustEnable);
  EXPECT_FALSE(Brightness::MixBriAdjustGlobalControl);
}

TEST(BrightnessSpace, ReadsTheImageInFrontAndFlashBehind) {
  StartAt(kNoon, "none");
  const Data file = Counted();
  Upload(file);
  Write(0, {0x7D});
  Write(1, {0xAB});  // of the sensor's table: in memory alone
  EXPECT_EQ(inprocess::Read(kBase, 3).m_data, (Data{0x7D, 0xAB, file[2]}));
  EXPECT_EQ(Stored(0, 3), (Data{0x7D, file[1], file[2]}));
  EXPECT_EQ(inprocess::Read(kBase + 0x1FF, 1).m_data, (Data{file[0x1FF]}));
  EXPECT_EQ(inprocess::Read(kBase + 0x1FF, 2).m_data, (Data{file[0x1FF], file[0x200]}));
  EXPECT_EQ(inprocess::Read(kBase + 0x13F0, 16).m_data, Stored(0x13F0, 16));
  EXPECT_EQ(inprocess::Read(kBase, 0x201).m_ucAck, 4);
}

TEST(BrightnessSpace, TheSwitchStopsTheMixAndStartsItAgain) {
  StartAt(kNoon);
  loop::Pass();
  Upload(TwoNodes().Bytes());
  EXPECT_EQ(SentValues(), Values{51});
  loop::Passes(601 * kSecond);
  EXPECT_EQ(SentValues(), Values{51}) << "repeated after ten minutes";
  Write(12, {0});
  Write(12, {0});
  // The evening's node comes while the mix is off, and is not made up for when it is on again.
  loop::SetBoardTime_us((kFriday + 20 * 3600 - 5) * loop::kSecond_us);
  loop::Passes(1300 * kSecond);
  EXPECT_EQ(SentValues(), Values{});
  Write(12, {9});
  EXPECT_EQ(SentValues(), Values{153});
  loop::Passes(60 * kSecond);
  EXPECT_EQ(SentValues(), Values{});
  EXPECT_EQ(Brightness::RtcIndex, 0);
  EXPECT_EQ(Stored(12, 1), (Data{1})) << "the switch is not stored";
}

TEST(BrightnessSpace, WeekdaysCountFromSundayAtAStart) {
  struct Case {
    int weekdays;
    Values sent;
  };
  const Case kCases[] = {{1 << 5, {51}}, {1 << 4, {}}, {0x5F, {}}};  // the day is a Friday
  StartAt(kNoon);
  loop::Pass();
  for (const Case& c : kCases) {
    Mix mix = TwoNodes();
    mix.nodes[0].weekdays = c.weekdays;
    Upload(mix.Bytes());
    EXPECT_EQ(SentValues(), c.sent) << c.weekdays;
  }
  EXPECT_EQ(Brightness::INT_Once, brightness::kArmed) << "the ring waits for the next node";
}

TEST(BrightnessSpace, TheSensorModeChangesTheScreenEverySixReadings) {
  StartAt(kNoon);
  board_kit::Put("sensors/lux", "500");
  Data table(512);
  table[0] = 0x7D;
  table[1] = 1;
  brightness_bytes::Put16(table, 5, 1000);
  table[9] = 255;
  table[10] = 10;
  table[11] = 10;
  loop::Pass();
  Upload(table);
  loop::Passes(5 * 99);
  loop::Passes(100);
  EXPECT_EQ(SentValues(), Values{}) << "the sixth reading is due, and taken in the next second";
  loop::Passes(5);
  EXPECT_EQ(SentValues(), Values{132});
  // A failed reading takes no slot.
  board_kit::Put("sensors/lux", "fail");
  loop::Passes(3 * 99);
  board_kit::Put("sensors/lux", "2000");
  loop::Passes(5 * 99);
  EXPECT_EQ(SentValues(), Values{});
  loop::Passes(99);
  EXPECT_EQ(SentValues(), Values{255});
  // Without steps a lookup fails, and the readings are dropped.
  Write(11, {0});
  loop::Passes(7 * 99);
  EXPECT_EQ(SentValues(), Values{});
}

TEST(BrightnessSpace, AMixWithoutSensorsFallsBackOrKeepsItsLight) {
  StartAt(kNoon);
  board_kit::Put("sensors/lux", "150");
  loop::Pass();
  Upload(SensorAllDay().Bytes());
  EXPECT_EQ(SentValues(), Values{});
  loop::Passes(2 * kSecond);
  EXPECT_EQ(SentValues(), (Values{102, 102}));
  board_kit::Put("sensors/lux", "fail");
  Mix without = SensorAllDay();
  without.fallback = -1;
  Upload(without.Bytes());
  loop::Passes(9 * kSecond);
  EXPECT_EQ(SentValues(), Values{});
  Data tooMany = SensorAllDay().Bytes();
  tooMany[DWQ_DECWD(&tooMany[3])] = 9;  // the count of its sensors
  board_kit::Put("sensors/lux", "150");
  Upload(tooMany);
  loop::Passes(4 * kSecond);
  EXPECT_EQ(SentValues(), Values{76}) << "a table with too many sensors is none";
}

// Keep-alives reach the watch through the feature space.
void KeepAlive(uint8_t limit_s) {
  inprocess::Write(0x0200003F, Data{limit_s});
  inprocess::DrainQueue();
}

TEST(BrightnessSpace, CardsLearnThatTheSerialLinkIsLost) {
  StartAt(kNoon);
  loop::Pass();
  Mix serial = TwoNodes();
  serial.mode = 0x9B;
  Upload(serial.Bytes());
  KeepAlive(3);
  EXPECT_EQ(Brightness::UartDiscOvertime, 3);
  loop::Passes(5 * kSecond);
  EXPECT_EQ(Sent().size(), 0U);
  loop::Passes(2 * kSecond);
  EXPECT_EQ(Sent(), (Lines(2, "255 0x02000100 ff")));
  KeepAlive(3);
  loop::Passes(2 * kSecond);
  EXPECT_EQ(Sent(), (Lines(1, "255 0x02000100 00")));
}

TEST(BrightnessSpace, TheMixTakesOverWhileTheDeviceIsSilent) {
  StartAt(kNoon);
  loop::Pass();
  Mix hardware = TwoNodes();
  hardware.mode = 0x9C;
  Upload(hardware.Bytes());
  KeepAlive(3);
  loop::Passes(4 * kSecond);
  EXPECT_EQ(SentValues(), Values{});
  loop::Passes(kSecond);
  EXPECT_EQ(SentValues(), Values{51});
  loop::Passes(20 * kSecond);
  EXPECT_EQ(SentValues(), Values{}) << "once a silence";
  KeepAlive(3);
  loop::Passes(kSecond);
  EXPECT_FALSE(Brightness::MixBrightnessAdjustEnable);
  for (int i = 0; i < 700; ++i) {
    KeepAlive(3);
    loop::Passes(kSecond);
  }
  EXPECT_EQ(SentValues(), Values{}) << "the device has the last word, repeats included";
}

TEST(BrightnessSpace, WithoutAStoredLimitTheMixDoesNotWait) {
  StartAt(kNoon);
  Mix hardware = TwoNodes();
  hardware.mode = 0x9C;
  board_kit::StoreFlash(kFlash, hardware.Bytes());
  Data_Global::getInstance()->SendParameterReg[0x3F] = 0;
  loop::Passes(4);
  EXPECT_EQ(SentValues(), Values{});
  loop::Pass();
  EXPECT_EQ(SentValues(), Values{51});
}

TEST(BrightnessSpace, ANewLimitStoresTheImageAndLosesNothing) {
  StartAt(kNoon, "none");
  Data area = Counted();
  area[0] = 0x11;
  board_kit::StoreFlash(kFlash, area);
  KeepAlive(60);  // before the loop's first pass
  EXPECT_EQ(Stored(0, area.size()), area);
  loop::Pass();
  Write(0, List({{8, 0, 100}}));
  KeepAlive(61);
  const Data list = List({{8, 0, 100}});
  std::copy(list.begin(), list.end(), area.begin());
  EXPECT_EQ(Stored(0, area.size()), area);
  area[1] = 2;
  Write(1, {2});
  board::SetFaultCount(board::Fault::kFlashRead, 3);  // what follows the image can't be read
  KeepAlive(62);
  EXPECT_EQ(Stored(0, area.size()), area);
}

TEST(BrightnessSpace, AFileInPiecesStartsWithItsLastAndOutlivesANewLimit) {
  StartAt(kNoon);
  loop::Pass();
  const Data file =
      Mix{.nodes = std::vector<brightness_bytes::Node>(40, {0, 0, false, 0x7F, 20})}.Bytes();
  for (const std::size_t piece : {512, 300}) {  // 300: one of them crosses the image's end
    Upload({file.begin(), file.end() - 1}, piece);
    EXPECT_EQ(SentValues(), Values{});
    Write(static_cast<uint32_t>(file.size() - 1), {file.back()});
    EXPECT_EQ(SentValues(), Values{51});
    KeepAlive(static_cast<uint8_t>(piece / 10));
    EXPECT_EQ(Stored(0, file.size()), file);
    Write(0, {0});
  }
}

TEST(BrightnessSpace, AScreenSetsThePortsThatItNames) {
  StartAt(kNoon, "card fpga");
  const auto write = [](uint32_t address, const Data& data) {
    return static_cast<int>(inprocess::Write(address, data).m_ucAck);
  };
  EXPECT_EQ(write(0x02400000, {200, 2, 0, 7, 0, 0x02, 0, 8, 0, 0x01, 0}), 0);
  EXPECT_EQ(Sent(), (Lines{"1 0x02000001 c8", "0 0x02000001 c8"}));
  EXPECT_EQ(BusWrites("0x00000400", "0x00000100"),
            (Lines{"0x00000100 1 ok 02", "0x00000400 15 ok 0101ffff0100010000020100c8cd02",
                   "0x00000100 1 ok 00", "0x00000100 1 ok 00",
                   "0x00000400 15 ok 0100ffff0100010000020100c8cc02", "0x00000100 1 ok 00"}));
  EXPECT_EQ(write(0x02400000, {200, 1, 0}), 0);
  EXPECT_EQ(write(0x02400001, {200, 1, 0, 7, 0, 0xFF, 0}), 0);
  EXPECT_EQ(inprocess::Read(0x02400000, 4).m_ucAck, 0);
  EXPECT_TRUE(Sent().empty());
}

}  // namespace
