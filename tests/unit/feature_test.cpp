// Writes to the feature space: what each sets off, and in which order.
#include <gtest/gtest.h>
#include <platform/mbus.h>

#include <regex>

#include "process/tprocess_ctl.h"
#include "proto/addr_hardwarebrightnessadjust.h"
#include "support/device.h"
#include "support/inprocess.h"
#include "support/rows.h"
#include "support/trace.h"

namespace {

using namespace ZEPH_MCUC;
using device::Global;

constexpr std::uint32_t kBase = 0x02000000;

// Bytes of the image as "offset:bytes", in hexadecimal.
struct Put {
  std::uint32_t offset;
  std::string hex;
};
std::vector<Put> Puts(const std::string& text) {
  std::vector<Put> puts;
  for (const std::string& word : support::WordsOf(text)) {
    const std::size_t colon = word.find(':');
    const auto offset = std::stoul(word.substr(0, colon), nullptr, 16);
    puts.push_back({static_cast<std::uint32_t>(offset), word.substr(colon + 1)});
  }
  return puts;
}
void PutImage(const std::string& text) {
  for (const Put& put : Puts(text)) device::PutImage(put.offset, put.hex.c_str());
}
void ExpectImage(const std::string& text) {
  for (const Put& put : Puts(text)) {
    EXPECT_EQ(device::Image(put.offset, put.hex.size() / 2), put.hex) << std::hex << put.offset;
  }
}
void Write(const std::string& text) {
  device::WriteFeature(Puts(text)[0].offset, Puts(text)[0].hex.c_str());
}

// The accesses in one line. "W 24 80" is a write to the FPGA's bus, "stored" the image into flash,
// "clear" that of both distances, "size" an output size as the first change, "zero" the trail that
// a screen without size leaves.
std::string Short(std::string trace) {
  const std::pair<const char*, const char*> words[] = {
      {"fpga W 0x", "W "},
      {"W 91 0000; W ac 0000", "clear"},
      {"flash W 0xa3b100 x512", "stored"},
      {"flash W 0xc20000 (\\w+); flash R 0xd17000 x1; flash W 0xd17000 01", "size $1"},
      {"shell echo \"Point:0 ,use adddr:0x20000(..), wide:0 high:0, description:Read software "
       "para!!\" >> /root/screen_zero.txt",
       "zero $1"}};
  for (const auto& [from, to] : words) trace = std::regex_replace(trace, std::regex(from), to);
  return trace;
}

// A picture of 1024 by 768, all else 0.
void ResetImage() {
  Global().SendParameterReg.write(0, std::array<std::uint8_t, 512>{});
  Global().ScreenParaReg.write(0, std::array<std::uint8_t, 16>{});
  PutImage("24:00040003 2c:0004 1ec:00040003");
  device::PutFlash(0xD17000, "00");
}

// Each row: what it is, the image before, the write, what that reaches, the image then.
void Check(const char* table) {
  device::Begin("fpga flash shell bus info");
  Addr_HardWareBrightnessAdjust::UartDiscOvertime = 9;
  support::Trace trace;
  for (const auto& row : support::Rows(5, table)) {
    SCOPED_TRACE(row[0]);
    ResetImage();
    PutImage(row[1]);
    Write(row[2]);
    EXPECT_EQ(Short(trace.TakeLine()), row[3]);
    ExpectImage(row[4]);
  }
}

TEST(FeatureWrite, SetsOffWhatItsOffsetMeans) {
  Check(R"(
    plain           | | 45:abcd            | W 45 abcd; stored | 45:abcd00
    up to the end   | | 1f9:01020304050607 | stored            | 1f9:01020304050607
    past the end    | | 1f9:0102030405060708 |                 | 1f9:00000000000000
    UART overtime   | | 3f:09   | stored                       | 3f:09
    power-on time   | | 21:28   | W 21 28; shell envcfg set boot_screen 5; stored | 21:28
    power-on, 35    | | 21:23   | W 21 23; shell envcfg set boot_screen 0; stored
    power-on, more  | | 21:2800 | W 21 2800; stored
    mirrored        | | 4a:0708 | owd 0x0200004a 07; W 4a 0708; stored
    low delay       | | 74:01   | owd 0x02000074 01; W 74 01; stored
    correction      | | 9c:1122 | W 9c 1122; owd 0x0200009c 1122; stored
    sync            | | d4:01   | W d4 01; stored; shell sync
    4K              | | 1d8:01  | W 1d8 01; info 1 0x020001d8 1 01; flash W 0xa3b2d8 01; stored
    optical mode    | | 1da:0203 | W 1da 0203; flash W 0xa3b2da 02; stored
  )");
}

TEST(FeatureWrite, SetsTheScreenSize) {
  Check(R"(
    real size        | | 24:8002e001
      | W 24 8002e001; W 1ec 00000000; size 00040000e0010000; stored | 1ec:00000000
    another at ..24  | | 124:01      | W 124 01; W 1ec 00000000; stored | 1ec:00000000
    height, no size  | 1ec:00000000 | 26:e001
      | zero 26; W 26 e001; size 00040000e0010000; stored | 1ec:0000e001
    width, no size   | 1ec:00000000 | 2c:2003
      | zero 2c; W 2c 2003; size 2003000000030000; stored | 1ec:20030000
    real height      | | 26:e001      | W 26 e001; size 0004000000030000; stored | 1ec:00040003
    the size itself  | | 1ec:00050003 | W 1ec 00050003; size 0005000000030000; stored
    less the offsets | 1f8:01 28:64003200 | 1ec:00050003
      | W 1ec 00050003; size 9c040000ce020000; stored | 1ec:00050003
    offset too large | 1f8:01 28:64000003 | 1ec:00050003
      | W 1ec 00050003; size 0005000000030000; stored
  )");
}

TEST(FeatureWrite, TouchesTheScreenSizeFromAndToTheseOffsets) {
  struct Case {
    std::uint32_t offset;
    std::size_t length;
    bool touches;
  };
  constexpr Case kCases[] = {
      {0x22, 1, false}, {0x22, 2, true},  {0x27, 1, true},  {0x28, 3, false}, {0x28, 4, true},
      {0x2B, 1, true},  {0x2D, 1, true},  {0x2E, 1, false}, {0x18, 64, true}, {0x1EA, 1, false},
      {0x1EB, 1, true}, {0x1EF, 1, true}, {0x1F0, 1, false}};
  device::Begin("flash");
  support::Trace trace;
  for (const Case& c : kCases) {
    ResetImage();
    device::WriteFeature(c.offset, std::string(2 * c.length, '1').c_str());
    EXPECT_EQ(support::Count(trace.Take(), "flash W 0xc20000"), c.touches ? 1 : 0)
        << std::hex << c.offset << " " << c.length;
  }
}

TEST(FeatureWrite, ChangesBypass) {
  Check(R"(
    from the registers | 1f8:02 2a:3200 | 28:6400
      | owd 0x020001f0 9cffffffceffffff; W 28 6400; clear; stored
      | 1f8:01 1f0:9cffffffceffffff
    while it is off    | | 28:6400 | W 28 6400; stored | 1f0:0000000000000000
    from the service   | 1f8:01 2a:0700 | 1f0:ceffffff32000000
      | W 28 3200; W 91 0000; W 2a 3200; W ac ffff; stored | 1f8:02 28:32000700 1ec:32040003
    both back          | 1f8:01 28:05000700 | 1f0:0000000001000080
      | W 28 0000; W 91 0000; W 2a ffff; W ac 0000; stored | 28:0000ffff 1ec:0004ff02
    the same, off      | | 1f0:ceffffff32000000 | stored | 1f8:00 28:00000000
    one byte of them   | 1f8:01 | 1f0:ce | stored | 1f8:01
    on    | 28:64003200 1f0:0102030405060708 | 1f8:a5
      | clear; W 28 64003200; stored; W 28 00000000; W 1ec 9c03ce02; size 9c030000ce020000
      | 1f8:01 28:00000000 1ec:9c03ce02 1f0:0000000000000000
    off   | 1f8:02 28:64000000 | 1f8:00
      | clear; W 28 00000000; stored; W 28 00000000; W 1ec 9c030003; size 9c03000000030000
      | 1f8:00 28:00000000 1ec:9c030003
    other | | 1f8:07   | stored | 1f8:07
    more  | | 1f8:a500 | stored | 1f8:a5
  )");
}

TEST(FeatureWrite, BypassMarksTheScreen) {
  const char* const cases[][3] = {
      // the head of the screen's parameters, a write, the head then
      {"005500000000", "1f0:ceffffffc4ffffff", "015532003c00"},
      {"000000000000", "1f0:ceffffff3c000000", "030032000000"},
      {"070011111111", "1f0:320000003c000000", "070011111111"},
      {"005511111111", "1f8:a5", "015500000000"},
  };
  device::Begin("none");
  for (const auto& [screen, write, after] : cases) {
    ResetImage();
    PutImage("1f8:01");
    Global().ScreenParaReg.write(0, inprocess::Bytes(screen));
    Write(write);
    EXPECT_EQ(device::Hex(Global().ScreenParaReg.snapshot<6>(0)), after);
  }
}

TEST(FeatureWrite, LowDelayInBypassNeedsGenlockAnd3DOff) {
  device::Begin("fpga flash bus");
  for (const auto& [genlock, state3D] : {std::pair{"00", "28"}, {"00", "00"}, {"01", "28"}}) {
    const bool passes = genlock == std::string("00") && state3D == std::string("28");
    ResetImage();
    PutImage("1f8:01");
    device::PutFlash(0x202A, genlock);
    device::PutFlash(0x2400, state3D);
    support::Trace trace;
    Write("74:01");
    EXPECT_EQ(Short(trace.TakeLine()), std::string("flash R 0x202a x1; flash R 0x2400 x1") +
                                           (passes ? "; owd 0x02000074 01; W 74 01; stored" : ""));
    ExpectImage(passes ? "74:01" : "74:00");
  }
}

TEST(FeatureWrite, SetsFlags) {
  struct Case {
    const char* write;
    int highSpeed, test;
  };
  constexpr Case kCases[] = {{"1e9:01", 1, 0}, {"1e9:0200", 1, 0}, {"1e9:02", 0, 0},
                             {"1ef:01", 0, 1}, {"1ee:0000", 0, 1}, {"1ef:00", 0, 0}};
  device::Begin("none");
  ResetImage();
  Write("1df:00");
  EXPECT_TRUE(Tprocess_ctl::OptToNetEnableOnce());
  for (const Case& c : kCases) {
    Write(c.write);
    EXPECT_EQ(Global()._gCorroentHighSpeed, c.highSpeed) << c.write;
    EXPECT_EQ(Global().RWFPGATestflag, c.test) << c.write;
  }
}

TEST(FeatureWrite, OffsetsInBypassArePassedOnUnlessTheServiceDaemonSetThem) {
  device::Begin("bus");
  for (const auto& row : support::Rows(4, R"(
      kye | 28:6400     | 1f8:01 | owd 0x020001f0 9cfffffff6ffffff
      kye | 28:64000001 | 1f8:02 | owd 0x020001f0 9cffffff00ffffff
      kye | 2a:0001     | 1f8:01 | owd 0x020001f0 fbffffff00ffffff
      kye | 28:6400     | 1f8:00
      owd | 28:6400     | 1f8:01
      kye | 28:640001   | 1f8:01
      kye | 29:0001     | 1f8:01
    )")) {
    ResetImage();
    PutImage("28:05000a00 " + row[2]);
    const Put write = Puts(row[1])[0];
    auto request =
        inprocess::WriteRequest(kBase + write.offset, inprocess::Bytes(write.hex.c_str()));
    request.ipcHeader.uiid = TaskId(cardsel_bit_self(), row[0] == "owd" ? task::kOwd : task::kKye);
    support::Trace trace;
    inprocess::Serve(request);
    EXPECT_EQ(Short(trace.TakeLine()), row[3]) << row[1] << " " << row[2];
    inprocess::DrainQueue();
  }
}

}  // namespace
