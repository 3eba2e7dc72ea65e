// The road of a request through the top table and a space's rows, and the two plainest spaces.
#include "proto/registerspace.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <numeric>

#include "board/cells.h"
#include "proto/tshl_ctl.h"
#include "support/board_kit.h"
#include "support/inprocess.h"

namespace {

using namespace ZEPH_MCUC;
using namespace inprocess;
using board::Fault;
using board::SetFaultCount;

using Data = std::vector<uint8_t>;

// --- A space of its own, so that rows, masks and checks are seen without what a real one does.

constexpr RowNames kRows[] = {{0x0010, "first", "first row"}, {0x0020, "second", "second row"}};
constinit const SpaceNames kOwnSpace{
    .className = "Addr_OwnRegister",
    .top = {{{0x77000000, "own", "own register"}}},
    .mask = 0x0000FFFF,
    .offsetMask = 0x0000000F,
    .least = 2,
    .most = 8,
    .rows = kRows,
};

class Addr_OwnRegister : public RegisterSpace<Addr_OwnRegister, kOwnSpace> {
 public:
  static std::span<const RowFunction> RowFunctions() {
    static constexpr RowFunction kFunctions[] = {Do<1>, Do<2>};
    return kFunctions;
  }
  template <uint8_t Row>
  static JSHL_Type_e Do(QMB_proto3rd* msg, Fshl_cmd* /*row*/, int /*flag*/) {
    row = Row;
    return space::Dispatch(msg, Read, Write);
  }
  static JSHL_Type_e Read(QMB_proto3rd* msg) {
    space::Reply(msg, Data{row, 0xBB});
    return JSHL_OK;
  }
  static JSHL_Type_e Write(QMB_proto3rd* msg) {
    written = msg->proto.m_data;
    return JSHL_Timeout;
  }
  static inline uint8_t row = 0;
  static inline Data written;
};

TEST(RegisterSpace, ChecksAgainstTheRowThatTheMaskedAddressNames) {
  struct Case {
    uint32_t address;
    uint16_t length;
    uint8_t code;
    JSHL_Type_e result;
    uint8_t ack, row;
  };
  constexpr Case kCases[] = {
      {0x77000010, 2, 0, JSHL_OK, 0, 1},
      {0x12340020, 8, 0, JSHL_OK, 0, 2},
      {0x77000020, 3, 1, JSHL_Timeout, 0, 2},
      {0x77000010, 1, 0, JSHL_invalidLenMaxMin, 4, 0},
      {0x77000010, 9, 1, JSHL_invalidLenMaxMin, 4, 0},
      {0x77000010, 2, 2, JSHL_invalidTypeErr, 4, 0},
      {0x77000011, 2, 0, JSHL_invalidCMD, 4, 0},
      {0x77010010, 0, 0, JSHL_invalidLenMaxMin, 4, 0},
  };
  Addr_OwnRegister::getInstance();
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.address * 10 + c.length);
    QMB_proto3rd request = c.code == 1 ? WriteRequest(c.address, Data(c.length, 0xCC))
                                       : ReadRequest(c.address, c.length);
    request.proto.m_ucCode = c.code;
    Addr_OwnRegister::row = 0;
    EXPECT_EQ(Addr_OwnRegister::Ssh_cmd(&request, nullptr, 0), c.result);
    EXPECT_EQ(request.proto.m_ucAck, c.ack);
    EXPECT_EQ(Addr_OwnRegister::row, c.row);
    if (c.code != 0) continue;
    EXPECT_EQ(request.proto.m_data, c.row == 0 ? Data{} : (Data{c.row, 0xBB}));
  }
  EXPECT_EQ(Addr_OwnRegister::written, Data(3, 0xCC));
}

TEST(RegisterSpace, RowSaysWhichOperationsItTakes) {
  struct Case {
    int32_t type;
    uint8_t code;
    JSHL_Type_e result;
  };
  constexpr Case kCases[] = {{PROTO_R, 0, JSHL_OK},
                             {PROTO_R, 1, JSHL_invalidTypeErr},
                             {PROTO_W, 0, JSHL_invalidTypeErr},
                             {PROTO_W, 1, JSHL_OK},
                             {PROTO_RW, 0, JSHL_OK},
                             {PROTO_RW, 1, JSHL_OK},
                             {PROTO_RW, 2, JSHL_invalidTypeErr}};
  for (const Case& c : kCases) {
    QMB_proto3rd request;
    request.proto.m_ucCode = c.code;
    request.proto.m_usValidDataLength = 512;
    Fcheck_func check{c.type, {}};
    EXPECT_EQ(Ssh_checkFun(&check, &request), c.result) << c.type << " " << int{c.code};
    request.proto.m_usValidDataLength = 513;
    EXPECT_EQ(Ssh_checkFun(&check, &request), JSHL_invalidLenMaxMin);
  }
}

TEST(RegisterSpace, RangeEndsWhereTheSpaceEnds) {
  struct Case {
    uint32_t address;
    uint16_t length;
    bool inside;
  };
  constexpr Case kCases[] = {{0x77000000, 15, true},    {0x77000000, 16, false},
                             {0x7700000E, 1, true},     {0x7700000F, 0, true},
                             {0x7700000F, 1, false},    {0xFFFFFFF1, 14, true},
                             {0x77000001, 65535, false}};
  for (const Case& c : kCases) {
    EXPECT_EQ(space::InRange(kOwnSpace, ReadRequest(c.address, c.length), 15, "ReadOwn"), c.inside)
        << c.address << " " << c.length;
  }
}

TEST(RegisterSpace, WriteWithoutDataIsNotQueued) {
  QMB_proto3rd request = WriteRequest(0x77000010, {});
  EXPECT_EQ(space::QueueWrite(&request, DoFeatureInfoKey, "WriteOwn"), JSHL_invalidTypeErr);
  EXPECT_EQ(space::QueueWrite(nullptr, DoFeatureInfoKey, "WriteOwn"), JSHL_invalidCMD);
  request.proto.m_data.resize(65530);  // one byte more than a block holds
  EXPECT_EQ(space::QueueWrite(&request, DoFeatureInfoKey, "WriteOwn"), JSHL_invalidCMD);
  EXPECT_EQ(DrainQueue(), 0);
}

// --- What a peer gets for requests that meet the top table, the rows and the plainest spaces.

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

TEST(Dispatcher, SpacesPrintTheirRows) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const int kept = dup(STDOUT_FILENO);
  dup2(ends[1], STDOUT_FILENO);
  QMB_proto3rd request = ReadRequest(0xF0001234, 0);
  Tshl_ctl::getInstance()->Ssh_cmdOffset(&request);
  Addr_OwnRegister::getInstance()->Ssh_print(nullptr);
  dup2(kept, STDOUT_FILENO);
  char text[512] = {};
  ASSERT_GT(read(ends[0], text, sizeof text - 1), 0);
  EXPECT_STREQ(text,
               "register base=0xF0000000 offset=0xF0000000 :testprintf Infomation\n"
               "register base=0x77000000 offset=0x00000010 :first row\n"
               "register base=0x77000000 offset=0x00000020 :second row\n");
  request.proto.m_uiRegisterUnitAddress = 0x02010000;  // looked up by its top byte
  EXPECT_NE(Tshl_ctl::getInstance()->Ssh_cmdOffset(&request), 4);
  request.proto.m_uiRegisterUnitAddress = 0x55000000;
  EXPECT_EQ(Tshl_ctl::getInstance()->Ssh_cmdOffset(&request), 4);
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
