// The spaces that do little more than move bytes: software table, screen info echo, backup info,
// card program.
#include <gtest/gtest.h>

#include "board/faults.h"
#include "support/device.h"
#include "support/inprocess.h"
#include "support/rows.h"
#include "support/trace.h"

namespace {

using namespace ZEPH_MCUC;
using board::Fault;
using board::SetFaultCount;
using device::Global;
using Data = std::vector<std::uint8_t>;

// Writes and carries out; what that reached.
std::string Written(std::uint32_t address, const Data& data) {
  support::Trace trace;
  EXPECT_EQ(inprocess::Write(address, data).m_ucAck, 0);
  inprocess::DrainQueue();
  return trace.Take();
}

TEST(SmallSpaces, WritesReachTheirFlashAndReadBack) {
  struct Case {
    std::uint32_t address;
    std::uint16_t length;
    const char* trace;
    int status;  // of the screen's configuration
  };
  constexpr Case kCases[] = {
      {0x05000000, 1, "flash W 0xc30000 07\n", 200},
      {0x0500FFFE, 2, "flash W 0xc3fffe 0707\n", 200},
      {0x05060000, 300, "flash W 0xc90000 x256\nflash W 0xc90100 x44\n", 200},
      {0x05064FFF, 1, "flash W 0xc94fff 07\n", 200},
      {0x05065000, 1, "flash W 0xc95000 07\n", 0},
      {0x02300000, 2, "flash W 0xb98000 0707\nshell sync\n", 0},
      {0x02300FFF, 1, "flash W 0xb98fff 07\nshell sync\n", 0},
  };
  device::Begin("flash shell");
  for (const Case& c : kCases) {
    Global().LEDConfigStatus = 0;
    EXPECT_EQ(Written(c.address, Data(c.length, 7)), c.trace) << std::hex << c.address;
    EXPECT_EQ(inprocess::Read(c.address, c.length).m_data, Data(c.length, 7));
    EXPECT_EQ(Global().LEDConfigStatus, c.status) << std::hex << c.address;
  }
  EXPECT_EQ(Written(0x02300FFF, Data(2)), "") << "the byte behind it is another space's";
}

TEST(SoftwareTable, OneByteAtTheSignalAsksTheVideoApplication) {
  device::Begin("flash bus");
  device::PutFlash(0xC3FFFF, "3132");
  support::Trace trace;
  EXPECT_EQ(inprocess::Read(0x0500FFFF, 1).m_data, Data{200});
  EXPECT_EQ(trace.Take(), "kye 0x02810000 c8\n");
  EXPECT_EQ(inprocess::Read(0x0500FFFF, 2).m_data, (Data{0x31, 0x32}));
  EXPECT_EQ(trace.Take(), "flash R 0xc3ffff x2\n");
}

TEST(ScreenInfoEcho, ReadAsksTheFirstCardForItsSize) {
  device::Begin("card", "card.width = 96\n");
  struct Case {
    std::uint16_t links;
    int failing;  // card reads
    const char* size;
    int asked;
  };
  constexpr Case kCases[] = {
      {1, 0, "60008000", 1}, {1, -1, "80008000", 1}, {0, 0, "80008000", 0}, {1, 0, "60008000", 1}};
  for (const Case& c : kCases) {
    Global().GigaPhyLinkSta = c.links;
    SetFaultCount(Fault::kCardRead, c.failing);
    support::Trace trace;
    EXPECT_EQ(device::Hex(inprocess::Read(0x02100006, 4).m_data), c.size);
    EXPECT_GE(support::Count(trace.Take(), "card R"), c.asked);
  }
}

TEST(ScreenInfoEcho, ReadEndsWithTheParametersAndWriteWithTheThirtySecond) {
  device::Begin("flash");
  EXPECT_EQ(inprocess::Read(0x02100000, 392).m_data.size(), 392U);
  EXPECT_EQ(inprocess::Read(0x02100000, 1024).m_data.size(), 392U);
  EXPECT_EQ(inprocess::Read(0x021000FF, 392).m_data.size(), 392U - 255);
  EXPECT_EQ(inprocess::Read(0x02100000, 1025).m_ucAck, 4);
  EXPECT_EQ(Written(0x0210001E, inprocess::Bytes("a1a2a3a4")), "");
  EXPECT_EQ(device::Hex(inprocess::Read(0x0210001D, 5).m_data), "00a1a20000");
  Written(0x02100020, inprocess::Bytes("b1"));
  Written(0x021000FF, inprocess::Bytes("b1b2"));
  Written(0x02100100, inprocess::Bytes("c1"));  // the low 8 bits count
  EXPECT_EQ(device::Hex(inprocess::Read(0x02100020, 1).m_data), "00");
  EXPECT_EQ(device::Hex(inprocess::Read(0x02100000, 1).m_data), "c1");
}

TEST(CardProgram, ReadsZerosAndRefusesTheRest) {
  struct Case {
    std::uint32_t address;
    std::uint16_t length;
    bool serves;
  };
  constexpr Case kReads[] = {{0x18000000, 256, true},   {0x18200000, 4096, true},
                             {0x18001000, 300, true},   {0x18000000, 255, false},
                             {0x18000000, 4097, false}, {0x18000001, 256, false}};
  device::Begin("none");
  for (const Case& c : kReads) {
    const auto reply = inprocess::Read(c.address, c.length);
    EXPECT_EQ(reply.m_ucAck, c.serves ? 0 : 4) << std::hex << c.address << " " << c.length;
    EXPECT_EQ(reply.m_data, Data(c.serves ? c.length : 0));
    EXPECT_EQ(inprocess::Write(c.address, Data(c.length)).m_ucAck, 4);
  }
  EXPECT_EQ(inprocess::DrainQueue(), 0);
}

}  // namespace
