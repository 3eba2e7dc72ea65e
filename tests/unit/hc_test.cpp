// The human-computer interaction space: its odd reads and writes, and what each write queues.
#include <gtest/gtest.h>

#include <sstream>

#include "board/faults.h"
#include "driverutil.h"
#include "process/tprocess.h"
#include "support/device.h"
#include "support/inprocess.h"
#include "support/trace.h"

namespace ZEPH_MCUC {
namespace {

using device::Global;

constexpr std::uint32_t kBase = 0x02200000;

// The ack of a write that is served and not carried out yet.
int Write(std::uint32_t offset, const char* hex) {
  return inprocess::Write(kBase + offset, inprocess::Bytes(hex)).m_ucAck;
}

int Do(std::uint32_t offset, const char* hex) {
  const int ack = Write(offset, hex);
  inprocess::DrainQueue();
  return ack;
}

std::string Read(std::uint32_t offset, std::uint16_t length) {
  return device::Hex(inprocess::Read(kBase + offset, length).m_data);
}

TEST(HCInteraction, FreshDeviceShowsDefaultsAndWhatFlashHolds) {
  device::Begin("none");
  device::PutFlash(0xC21117, "a0a1a2a3a4a5a6a7a8a9aaabacadaeafb0b1b2b3b4b5b6b7b8b9");
  device::PutFlash(0xD14000, "000039f60763");
  device::PutFlash(0xC210C0, "02");
  struct Case {
    std::uint32_t offset;
    std::uint16_t length;
    const char* bytes;
  };
  constexpr Case kCases[] = {
      {0x117, 4, "00e8031e"},     {0x117, 25, "00e8031ea4a5a6a7a8a9aaabacadaeafb0b1b2b3b4b5b60fb8"},
      {0x117, 5, "0000000000"},   {0x118, 2, "0000"},  // written apart, read together alone
      {0x129, 1, "04"},           {0x129, 3, "040000"},
      {0x12C, 2, "0763"},         {0x12C, 3, "000000"},
      {0x12E, 1, "0f"},           {0x12E, 2, "0f00"},
      {0x13A, 6, "000000000000"},  // nothing was applied yet
      {0x13A, 4, "00000000"},     {0x0C0, 1, "02"},
      {0x0C0, 2, "0000"},         {0x10C0, 1, "00"},  // the higher bits count here
      {0x1129, 1, "04"},                              // and don't there
      {0x1FF, 2, "0000"},
  };
  for (const Case& c : kCases) EXPECT_EQ(Read(c.offset, c.length), c.bytes) << std::hex << c.offset;
}

TEST(HCInteraction, EveryFieldQueuesItsWork) {
  device::Begin("flash env");
  Global().GigaPhyLinkSta = 1;
  struct Case {
    std::uint32_t offset;
    const char* bytes;
    const char* trace;   // of flash and environment, reads left out
    const char* stored;  // the ten bytes of the last mode change
  };
  static constexpr char kMode[] = "flash W 0xc21000 x10\n";
  constexpr Case kCases[] = {
      {0x118, "d007", kMode, "00040000e8031e000f8c"},  // no HDR10: dropped, and the mode loaded
      {0x117, "58", kMode, "58046400e8031e000f8c"},
      {0x118, "d007", kMode, "58046400d0071e000f8c"},
      {0x118, "90", kMode, "5804640090001e000f8c"},    // the high byte is 0 then
      {0x11A, "c801", kMode, "580464009000c8000f8c"},  // and the low one alone here
      {0x12E, "21", kMode, "580464009000c800218c"},
      {0x129, "02", kMode, "580464009000c800218c"},  // no HLG: dropped
      {0x117, "78", kMode, "78040000e8031e000f8c"},
      {0x129, "02", kMode, "78020000e8031e000f8c"},
      {0x117, "5801", kMode, "580464009000c800218c"},  // as HDR10 was left
      {0x117, "00", kMode, "00020000e8031e000f8c"},
      {0x12C, "0763", "flash W 0xd14000 000039f60763\n", nullptr},
      {0x12C, "07", "", nullptr},
      {0x119, "58", "", nullptr},
      {0x0C0, "00", "env set devcom_mode 0\n", nullptr},
      {0x0C0, "01ff", "env set devcom_mode 1\n", nullptr},
      {0x0C0, "09", "env set devcom_mode 2\n", nullptr},
  };
  support::Trace trace;
  for (const Case& c : kCases) {
    SCOPED_TRACE(testing::Message() << std::hex << c.offset << ' ' << c.bytes);
    EXPECT_EQ(Do(c.offset, c.bytes), 0);
    std::string written;
    std::istringstream lines(trace.Take());
    for (std::string line; std::getline(lines, line);) {
      if (!line.starts_with("flash R")) written += line + "\n";
    }
    EXPECT_EQ(written, c.trace);
    if (c.stored != nullptr) {
      EXPECT_EQ(device::Flash(0xC21000, 10), c.stored);
    }
  }
  EXPECT_EQ(Global().ChangeParaForKeepWarmUpMode, 0x07);
  EXPECT_EQ(Global().ParaForKeepWarmUpModeTimeData, 0x63);
}

TEST(HCInteraction, BrightnessComesFromTheFirstCardInPercent) {
  device::Begin("none");
  Global().GigaPhyLinkSta = 1;
  const struct {
    const char* card;
    const char* percent;
  } kCases[] = {{"80", "32"}, {"ff", "64"}, {"01", "00"}, {"00", "00"}};
  for (const auto& c : kCases) {
    DriverUtil::getInstance()->SendCardPara(0x02000001, 1, inprocess::Bytes(c.card).data(),
                                            RecvCard);
    Do(0x117, "58");
    EXPECT_EQ(device::Flash(0xC21002, 1), c.percent);
  }
  board::SetFaultCount(board::Fault::kCardRead, 1);
  Do(0x117, "58");
  EXPECT_EQ(device::Flash(0xC21002, 1), "00");
}

}  // namespace
}  // namespace ZEPH_MCUC
