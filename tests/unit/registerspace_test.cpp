// What a peer gets for requests that meet the top table, the rows and the plainest spaces.
#include <gtest/gtest.h>

#include <numeric>

#include "board/cells.h"
#include "board/faults.h"
#include "proto/tshl_ctl.h"
#include "support/inprocess.h"

namespace {

using namespace ZEPH_MCUC;
using namespace inprocess;
using board::Fault;
using board::SetFaultCount;

using Data = std::vector<uint8_t>;

struct Answer {
  const char* name;
  uint32_t address;
  uint8_t code;
  uint16_t length;
  uint8_t ack;
  std::size_t bytes;  // in the reply
  uint8_t device = 0;
};

constexpr Answer kAnswers[] = {
    {"block without a space", 0x02010000, 0, 4, 0, 0},
    {"top byte of a space, other block", 0x02800000, 1, 4, 0, 0},
    {"nothing there at all", 0xFFFFFFFF, 0, 65535, 0, 0},
    {"plug-in card read", 0x0001FFFF, 0, 512, 0, 0},
    {"plug-in card write", 0x00010000, 1, 1, 0, 0},
    {"plug-in card, too few", 0x00010000, 0, 0, 4, 0},
    {"plug-in card, too many", 0x00010000, 1, 513, 4, 0},
    {"plug-in card, no such operation", 0x00010000, 2, 1, 4, 0},
    {"test read", 0xF0100051, 0, 1, 0, 1},
    {"test read, the other key", 0xF1200000, 0, 4095, 0, 4095},
    {"test read of nothing", 0xF0000000, 0, 0, 0, 0},
    {"test read, too many", 0xF0000000, 0, 4096, 0, 0},
    {"test write", 0xF0400000, 1, 4096, 0, 0},
    {"test write, too many", 0xF0400000, 1, 4097, 4, 0},
    {"test write of nothing", 0xF0400000, 1, 0, 0, 0},
    {"test space, no such operation", 0xF0400000, 7, 4, 0, 0},
    {"no such kind of device", 0xF0000000, 0, 4, 0, 0, 5},
    {"no such kind of device either", 0xF0000000, 0, 4, 0, 0, 255},
};

TEST(Dispatcher, AnswersEveryRequest) {
  for (const Answer& answer : kAnswers) {
    SCOPED_TRACE(answer.name);
    QMB_proto3rd request = answer.code == 1 ? WriteRequest(answer.address, Data(answer.length))
                                            : ReadRequest(answer.address, answer.length);
    request.proto.m_ucCode = answer.code;
    request.proto.m_ucDeviceType = answer.device;
    const auto reply = Serve(request);
    EXPECT_EQ(reply.m_ucAck, answer.ack);
    EXPECT_EQ(reply.m_data.size(), answer.bytes);
  }
  EXPECT_EQ(DrainQueue(), 0);
  EXPECT_EQ(Tshl_ctl::getInstance()->Ssh_StartSendCard(nullptr), 4);
}

TEST(Dispatcher, MarkedRequestIsAnsweredAndNotServed) {
  QMB_proto3rd request = WriteRequest(0xF0400000, Data{1});
  request.proto.m_ucAck = JSHL_CRCERR_Request;
  EXPECT_EQ(Serve(request).m_ucAck, JSHL_CRCERR_Request);
  EXPECT_EQ(Read(0xF0400000, 1).m_data, Data{0});
}

Data Cells(uint32_t address, uint32_t length) {
  Data data(length);
  board::LoadCells(1, address, length, data.data());
  return data;
}

TEST(TestSpace, MovesBytesBetweenPeerAndBus) {
  Data data(3000);
  std::iota(data.begin(), data.end(), uint8_t{3});
  EXPECT_EQ(Write(0xF1234567, data).m_ucAck, 0);
  EXPECT_EQ(Cells(0x1234567, 3000), data);
  EXPECT_EQ(Read(0xF1234567, 3000).m_data, data);
  Write(0xF0400000, Data(4097, 0x11));
  EXPECT_EQ(Cells(0x400000, 4097), Data(4097)) << "a refused write has written";
}

TEST(TestSpace, UnreadableCellsAnswerZero) {
  Write(0xF0400000, Data(1500, 0x22));
  SetFaultCount(Fault::kSkip, 1);
  SetFaultCount(Fault::kFpgaRead, 3);
  const auto reply = Read(0xF0400000, 1500);  // its second chunk fails
  EXPECT_EQ(reply.m_ucAck, 0);
  Data expected(1500, 0x22);
  std::fill(expected.begin() + 1024, expected.end(), uint8_t{0});
  EXPECT_EQ(reply.m_data, expected);
  SetFaultCount(Fault::kFpgaWrite, 3);
  EXPECT_EQ(Write(0xF0400000, Data{1}).m_ucAck, 0);
  EXPECT_EQ(Cells(0x400000, 1), Data{0x22});
}

TEST(TestSpace, OnlyAWholePatternIsApplied) {
  struct Case {
    uint32_t address;
    uint16_t length;
    uint8_t strobe;
  };
  constexpr Case kCases[] = {
      {0xF1200000, 24, 0}, {0xF1200000, 26, 0}, {0xF1200001, 25, 0}, {0xF1200000, 25, 1}};
  for (const Case& c : kCases) {
    Write(c.address, Data(c.length, 0x33));
    EXPECT_EQ(Cells(c.address & 0x0FFFFFFF, c.length), Data(c.length, 0x33));
    EXPECT_EQ(Cells(0x100051, 1), Data{c.strobe}) << c.address << " " << c.length;
  }
}

}  // namespace
