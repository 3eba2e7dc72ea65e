// Input boards and their sources: detection, the EDIDs that they are given, what a client sees and
// changes through the EDID space, and the board's side of it.
#include <gtest/gtest.h>
#include <platform/inputsource.h>

#include <algorithm>
#include <thread>

#include "board/faults.h"
#include "board/files.h"
#include "process/inputSource.h"
#include "support/board_kit.h"
#include "support/device.h"
#include "support/inprocess.h"
#include "support/trace.h"

namespace ZEPH_MCUC {
namespace {

using board::Fault;
using board::SetFaultCount;
using inprocess::Bytes;

constexpr uint32_t kSpace = 0x08000000;
constexpr uint32_t kRecord = 0x200000;

InputSource& Inputs() { return *InputSource::getInstance(); }

// What a board shows now.
std::string Shown(const char* file) {
  return board::ReadWhole(board_kit::Named() / "inputs" / file).value_or("");
}

// The preferred mode that an image shows, which is whole.
VideoMode ModeShown(const char* file) {
  const std::string image = Shown(file);
  EXPECT_EQ(image.size(), edid::kSize);
  EdidImage bytes{};
  std::copy_n(image.begin(), std::min(image.size(), bytes.size()), bytes.begin());
  EXPECT_EQ(VerifyEdid(bytes), EdidFault::kNone);
  return PreferredMode(std::span(bytes).first<edid::kRead>()).value_or(VideoMode{});
}

// A client's EDID of `length` bytes with this timing in front (bytes 54 to 61), nothing else right.
std::vector<uint8_t> ClientEdid(const char* timing, std::size_t length = 128) {
  std::vector<uint8_t> image(length, 0xA5);
  const auto bytes = Bytes(timing);
  std::copy(bytes.begin(), bytes.end(), image.begin() + 54);
  return image;
}

constexpr char k720p[] = "01 1D 00 72 51 D0 1E 20";  // 1280 by 720 at 60 Hz
constexpr char k1080p[] = "02 3A 80 18 71 38 2D 40";

uint8_t Send(std::span<const uint8_t> image, uint32_t address = kSpace) {
  const auto reply = inprocess::Write(address, image);
  inprocess::DrainQueue();
  return reply.m_ucAck;
}

TEST(Inputs, DetectionListsSourcesAndShowsTheirStoredModes) {
  device::Begin("edid flash");
  const std::string own = Shown("0000.edid");
  device::PutFlash(kRecord + 6, "0005 D002 7017");  // group 1: 1280 by 720 at 60 Hz
  EXPECT_EQ(Inputs().RealSourceNum(), 0);
  EXPECT_EQ(Inputs().GetSourceByGroup(EN_INPUT_A), nullptr);
  support::Trace trace;
  const auto reply = inprocess::Read(kSpace, 1);
  EXPECT_EQ(reply.m_ucAck, 0);
  EXPECT_TRUE(reply.m_data.empty());
  EXPECT_EQ(trace.Take(),
            "flash R 0x200000 x72\nedid W 0x0000\nflash R 0x200000 x72\nedid W 0x0010\n");
  EXPECT_EQ(Inputs().RealSourceNum(), 2);
  EXPECT_EQ(ModeShown("0000.edid"), (VideoMode{1920, 1080, 6000}));
  EXPECT_EQ(ModeShown("0010.edid"), (VideoMode{1280, 720, 6000}));
  EXPECT_NE(Shown("0000.edid"), own);
  EXPECT_NE(Shown("0000.edid").find("ZEPH DUAL_DVI"), std::string::npos);
  EXPECT_NE(Shown("0010.edid").find("ZEPH HDMI1.4"), std::string::npos);
}

struct Label {
  uint8_t code;
  const char* name;
  en_fpga_input_ch_t channel;
};

void ExpectSources(const std::vector<Label>& wanted) {
  ASSERT_EQ(Inputs().RealSourceNum(), wanted.size());
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    SCOPED_TRACE(i);
    const auto group = static_cast<en_input_group_t>(i);
    const source_t* source = Inputs().GetSourceByGroup(group);
    ASSERT_NE(source, nullptr);
    EXPECT_EQ(source->signal_state, EN_SSS_SIGNAL_LINK);
    EXPECT_EQ(source->src_code, wanted[i].code);
    EXPECT_EQ(source->input_ch, wanted[i].channel);
    const inputsource_name_t name = Inputs().NameOfGroup(group);
    EXPECT_STREQ(name.name.data(), wanted[i].name);
    EXPECT_EQ(name.lenName, std::strlen(wanted[i].name));
    EXPECT_EQ(name.cardNO, i);
    EXPECT_EQ(name.sourceCode, wanted[i].code);
  }
}

TEST(Inputs, SourcesByTypeAndChannelByPlace) {
  device::Begin("none",
                "input.0 = 0x0000 HDMI14\ninput.1 = 0x0010 HDMI14\ninput.2 = 0x0001 DVI\n"
                "input.3 = 0x0002 DDVI\ninput.4 = 0x0011 SDI3G\ninput.5 = 0x0003 VGA\n"
                "input.6 = 0x0060 DDVI\n");
  for (int again = 0; again < 2; ++again) {
    Inputs().InputBoardInit();
    ExpectSources({{0x61, "HDMI1.4-1", EN_FPGA_IN_CH1},
                   {0x62, "HDMI1.4-2", EN_FPGA_IN_CH2},
                   {0x00, "DVI", EN_FPGA_IN_CH5},
                   {0x51, "DUAL_DVI-1", EN_FPGA_IN_CH6},
                   {0x30, "SDI", EN_FPGA_IN_CH_INVALID},
                   {0x20, "VGA", EN_FPGA_IN_CH_INVALID},
                   {0x52, "DUAL_DVI-2", EN_FPGA_IN_CH_INVALID}});
  }
}

TEST(Inputs, BoardsPastTheSeventhAreLoggedAndLeft) {
  std::string configuration;
  for (int i = 0; i < 9; ++i) {
    configuration += "input." + std::to_string(i) + " = " + std::to_string(i * 16) + " DVI\n";
  }
  device::Begin("edid", configuration);
  device::Log log;
  support::Trace trace;
  Inputs().InputBoardInit();
  EXPECT_EQ(Inputs().RealSourceNum(), 7);
  const std::string lines = log.Take();
  EXPECT_EQ(support::Count(lines, "Error === input_board_detect ===no room"), 2);
  EXPECT_NE(lines.find("Input Total = 7"), std::string::npos);
  EXPECT_EQ(support::Count(trace.Take(), "edid W"), 7);
}

// A type that is given no EDID ends the procedure for all behind it; one without sources of its own
// keeps the code that its place has, which is a DVI's.
TEST(Inputs, UnsupportedTypeEndsTheEdids) {
  device::Begin("edid",
                "input.0 = 0x0000 HDMI20\ninput.1 = 0x0010 SDI3G\ninput.2 = 0x0020 HDMI14\n");
  device::Log log;
  support::Trace trace;
  Inputs().InputBoardInit();
  ExpectSources({{0x00, "", EN_FPGA_IN_CH1},
                 {0x30, "SDI", EN_FPGA_IN_CH2},
                 {0x61, "HDMI1.4-1", EN_FPGA_IN_CH3}});
  EXPECT_EQ(trace.Take(), "edid W 0x0000\n");
  EXPECT_NE(log.Take().find("Nonsupport EDIDInit Source group 1"), std::string::npos);
  Inputs().EDIDSetByMode(1, 1920, 1080, 6000);
  EXPECT_NE(log.Take().find("Nonsupport Source "), std::string::npos);
  Inputs().EDIDSetByMode(2, 1920, 1080, 6000);
  EXPECT_EQ(trace.Take(), "edid W 0x0020\n");
}

TEST(EdidSpace, ReadsTheCurrentGroupsEdid) {
  device::Begin("edid");
  EXPECT_EQ(inprocess::Read(kSpace, 128).m_data, std::vector<uint8_t>(128, 0)) << "no source yet";
  inprocess::Read(kSpace, 1);
  support::Trace trace;
  struct Case {
    const char* source_id;
    uint16_t length;
    const char* file;  // empty: zeros
  };
  constexpr Case kCases[] = {{"61", 128, "0000.edid"}, {"61", 256, "0000.edid"},
                             {"62", 256, "0010.edid"}, {"50", 256, ""},
                             {"00", 256, "0000.edid"}, {"63", 128, "0000.edid"}};
  for (const Case& c : kCases) {
    device::PutImage(0x1A5, c.source_id);
    const auto reply = inprocess::Read(kSpace, c.length);
    const std::string data(reply.m_data.begin(), reply.m_data.end());
    const std::string wanted = *c.file == '\0' ? std::string(c.length, '\0') : Shown(c.file);
    EXPECT_EQ(data, wanted.substr(0, c.length)) << c.source_id;
    EXPECT_EQ(reply.m_ucAck, 0);
  }
  EXPECT_EQ(support::Count(trace.Take(), "edid R"), 5) << "a group without a source asks no board";

  SetFaultCount(Fault::kEdidRead, 1);
  EXPECT_EQ(inprocess::Read(kSpace, 256).m_data, std::vector<uint8_t>(256, 0));
  for (const auto& [offset, length] :
       {std::pair{0, 0}, {0, 2}, {0, 127}, {0, 257}, {128, 128}, {1, 1}}) {
    const auto reply =
        inprocess::Read(kSpace + static_cast<uint32_t>(offset), static_cast<uint16_t>(length));
    EXPECT_TRUE(reply.m_data.empty()) << offset << " " << length;
    EXPECT_EQ(reply.m_ucAck, 0);
  }
  EXPECT_EQ(inprocess::Read(kSpace, 2049).m_ucAck, 4);
  EXPECT_EQ(inprocess::Read(kSpace + 0x10000, 128).m_data.size(), 0U);
}

TEST(EdidSpace, WritesThatChangeNothing) {
  device::Begin("edid flash");
  inprocess::Read(kSpace, 1);
  support::Trace trace;
  device::Log log;
  for (const std::size_t length : {64, 127, 129, 255, 257, 2048}) {
    EXPECT_EQ(Send(ClientEdid(k720p, length)), 0) << length;
    EXPECT_EQ(
        support::Count(log.Take(), "Error === DoWriteEdidInfo ===data length > 100! length = "),
        length > 256 ? 1 : 0);
  }
  for (const char* timing :
       {"00 00 00 00 00 00 00 00", "00 00 80 18 71 38 2D 40", "FF FF FF 00 F0 FF 00 F0"}) {
    EXPECT_EQ(Send(ClientEdid(timing)), 0);
    EXPECT_EQ(support::Count(log.Take(), "Error === EDIDCommStorage ==="), 1) << timing;
  }
  EXPECT_EQ(Send({}), 0) << "no data: answered, not queued";
  EXPECT_EQ(trace.Take(), "");
}

TEST(EdidSpace, ModeIsStoredThoughTheBoardFails) {
  device::Begin("edid flash");
  inprocess::Read(kSpace, 1);
  const std::string before = Shown("0000.edid");
  device::Log log;
  SetFaultCount(Fault::kEdidWrite, 1);
  Send(ClientEdid(k720p));
  EXPECT_EQ(Shown("0000.edid"), before);
  const std::string lines = log.Take();
  EXPECT_NE(lines.find("SetEDIDInfo error"), std::string::npos);
  EXPECT_NE(lines.find("EDIDSetByMode done"), std::string::npos);
  inprocess::Read(kSpace, 1);  // the next detection
  EXPECT_EQ(ModeShown("0000.edid"), (VideoMode{1280, 720, 6000}));

  SetFaultCount(Fault::kFlashWrite, 3);  // once for each try
  Send(ClientEdid(k1080p));
  EXPECT_EQ(ModeShown("0000.edid"), (VideoMode{1920, 1080, 6000})) << "shown all the same";
  EXPECT_EQ(device::Flash(kRecord, 6), "0005d0027017");
}

// Without a detection there is no source to show the mode; it waits in the store, beside what the
// other groups have there.
TEST(EdidSpace, WriteBeforeDetectionKeepsTheOtherModes) {
  device::Begin("edid");
  device::PutFlash(kRecord + 6, "0004 0003 8813");
  device::PutFlash(kRecord + 54, "0102");
  device::Log log;
  support::Trace trace;
  Send(ClientEdid(k720p));
  EXPECT_NE(log.Take().find("SourceGroup Error,p_src is NULL!"), std::string::npos);
  EXPECT_EQ(trace.Take(), "");
  EXPECT_EQ(device::Flash(kRecord, 12),
            "0005d0027017"
            "000400038813");
  EXPECT_EQ(device::Flash(kRecord + 54, 2), "0102");
}

// The bus receive thread detects, the work thread writes: whichever comes last, the board shows
// what the store holds.
TEST(Inputs, DetectionAndAClientsEdidTakeTurns) {
  device::Begin("none");
  Inputs().InputBoardInit();
  std::thread detecting([] {
    for (int i = 0; i < 20; ++i) Inputs().InputBoardInit();
  });
  for (int i = 0; i < 20; ++i) {
    Inputs().EDIDCommStorage(0, ClientEdid(i % 2 == 0 ? k720p : k1080p).data());
    Inputs().EDIDCommStorage(1, ClientEdid(k720p).data());
  }
  detecting.join();
  EXPECT_EQ(ModeShown("0000.edid"), (VideoMode{1920, 1080, 6000}));
  EXPECT_EQ(ModeShown("0010.edid"), (VideoMode{1280, 720, 6000}));
  EXPECT_EQ(Inputs().RealSourceNum(), 2);
}

TEST(Inputs, MeasurementsAndWhatTheyChange) {
  device::Begin("none",
                "input.0 = 0x0000 DVI\ninput.1 = 0x0010 HDMI14\ninput.2 = 0x0020 DVI\n"
                "input.3 = 0x0030 DVI\ninput.4 = 0x0001 DVI\n");
  EXPECT_EQ(Inputs().RefreshInputSourceStatus(0, {}), -1);
  Inputs().InputBoardInit();
  struct Case {
    u8 group, interlaced, stable;
    u16 width, height, period;
    int result;
    u16 stored_height;
    en_source_signal_state_t state;
  };
  constexpr Case kCases[] = {
      {0, 0, 1, 1920, 1080, 16666, 1, 1080, EN_SSS_SIGNAL_LINK},
      {0, 0, 1, 1920, 1080, 16675, 0, 1080, EN_SSS_SIGNAL_LINK},  // 9 us are no change
      {0, 0, 1, 1920, 1080, 16685, 1, 1080, EN_SSS_SIGNAL_LINK},  // 10 us are
      {0, 1, 1, 1920, 540, 16685, 0, 1080, EN_SSS_SIGNAL_LINK},   // two fields make a frame
      {0, 0, 0, 1920, 1080, 16685, 1, 1080, EN_SSS_NOSIGNAL},
      {0, 0, 0, 640, 480, 1, 0, 1080, EN_SSS_NOSIGNAL},  // stands for 1920 by 1080
      {1, 0, 1, 65, 65, 16666, 1, 65, EN_SSS_SIGNAL_LINK},
      {4, 1, 1, 1920, 540, 16666, 1, 540, EN_SSS_SIGNAL_LINK},  // this group counts frames
      {5, 0, 1, 1920, 1080, 16666, -1, 0, EN_SSS_INVALID},
  };
  for (const Case& c : kCases) {
    const fpag_in_res_reg_t measured{0, c.interlaced, c.stable, c.width, c.height, c.period, 0, 0,
                                     0};
    EXPECT_EQ(Inputs().RefreshInputSourceStatus(c.group, measured), c.result);
    const source_t* source = Inputs().GetSourceByGroup(static_cast<en_input_group_t>(c.group));
    ASSERT_EQ(source == nullptr, c.result < 0);
    if (source == nullptr) continue;
    EXPECT_EQ(source->res.v_active, c.stored_height) << c.width;
    EXPECT_EQ(source->signal_state, c.state);
  }
}

}  // namespace
}  // namespace ZEPH_MCUC
