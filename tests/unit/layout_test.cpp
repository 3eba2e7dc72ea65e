// The wall's layout as a client asks for it: the record and what its writes set off, in which
// order, and the tables behind it.
#include <gtest/gtest.h>

#include <future>
#include <regex>

#include "process/tprocess.h"
#include "proto/porttables.h"
#include "stub/mcuqmbthread.h"
#include "stub/stubutil.h"
#include "support/device.h"
#include "support/inprocess.h"
#include "support/rows.h"
#include "support/trace.h"

namespace {

using namespace ZEPH_MCUC;
using device::Global;

constexpr std::uint32_t kRecord = 0x02810000;

// The accesses in one line, with a word for each group of them that comes again.
std::string Short(support::Trace& trace) {
  static const std::pair<std::regex, const char*> words[] = {
      {std::regex("flash R 0xb88000 x4; flash W 0xa3b100 x512; flash W 0xa61000 x512; "
                  "(flash W 0xb88000 39f6a55a; )?flash W 0xa3c000 x40960; "
                  "flash W 0xa5c000 x768; shell sync"),
       "save"},
      {std::regex("flash W 0xc20000 (\\w+); flash R 0xd17000 x1; flash W 0xd17000 \\w+"),
       "size $1"},
      {std::regex("fpga R 0x500000 x128; fpga R 0x501000 x128; fpga R 0x502000 x128"), "ask"},
      {std::regex("(; fpga W 0x50[012]\\w+ \\w\\w){20}"), "; counts"},
      {std::regex("(; fpga W 0x60\\w+ x1024){40}"), "; tables"},
      {std::regex("(; fpga W 0x\\w+ 00){16}(; flash W 0xa3b\\w+ 0+){3}"), "; roles"}};
  std::string text = trace.TakeLine();
  for (const auto& [from, to] : words) text = std::regex_replace(text, from, to);
  return text;
}

TEST(Layout, SmartRequestIsStoredSizedAndLaidOutOnceTheWritesStopped) {
  device::Begin("flash fpga shell bus");
  const auto owd = device::ConnectOwd();
  device::PutFlash(0xB9901C, "a1a2a3a4a5");
  support::Trace trace;
  EXPECT_EQ(inprocess::Write(kRecord + 0x10, inprocess::Bytes("00000000000004030500")).m_ucAck, 0);
  EXPECT_EQ(Short(trace),
            "flash W 0xb99010 x10; flash W 0xb99010 x10; flash R 0xb99000 x28; fpga R 0x1d7 x1; "
            "owd 0x02100006 80008000; flash W 0xb99000 x32");
  EXPECT_EQ(device::Flash(0xB9901C, 5), "00000000a5");
  inprocess::Write(kRecord + 0x11, inprocess::Bytes("00"));
  EXPECT_EQ(Short(trace),
            "flash W 0xb99011 00; flash W 0xb99011 00; flash R 0xb99000 x28; "
            "flash W 0xb99000 x32")
      << "the card is asked once";
  device::PutImage(0x9D, "a5");
  EXPECT_EQ(inprocess::DrainQueue(), 2);
  const std::string once =
      "flash W 0xa3b19d ff; fpga W 0x28 00000000; size 8001000000020000; save; "
      "fpga W 0x1ec 80010002; flash W 0xb99000 a8";
  EXPECT_EQ(Short(trace), once + "; " + once);
  EXPECT_EQ(device::Image(0x9D, 1), "ff");
  EXPECT_EQ(Global().NormalBackupStatus, 1);
  device::PutFpga(0x9D, "a5");
  inprocess::Read(0x02000000, 512);
  EXPECT_EQ(device::Image(0x9D, 1), "ff") << "the FPGA doesn't hold that yet";
  trace.Take();
  McuQMBThread::CalculateSenderParaHandler();
  EXPECT_EQ(Short(trace), "");
  McuQMBThread::CalculateSenderParaHandler();
  EXPECT_EQ(Short(trace),
            "flash R 0xb99000 x28; fpga R 0x1d7 x1; owd 0x02100006 80008000; "
            "flash W 0xc20040 x15; ask; counts; tables; fpga W 0x18 x430; save; "
            "flash W 0xb99000 a8");
  EXPECT_EQ(device::Fpga(0x9D, 1), "ff");
  device::PutFpga(0x9D, "a5");
  inprocess::Read(0x02000000, 512);
  EXPECT_EQ(device::Image(0x9D, 1), "a5") << "from here on the FPGA's counts";
}

TEST(Layout, StoredRecordWinsOverTheQueuedOne) {
  device::Begin("none");
  inprocess::Write(kRecord + 0x10, inprocess::Bytes("00000000000004030500"));
  inprocess::DrainQueue();
  device::PutFlash(0xB99011, "01000000000203");
  Tprocess::CalculateParaOfSenderHandler();
  EXPECT_EQ(device::Flash(0xC20040, 15), "015500000000800080000203010500");
  device::PutFlash(0xB99016, "00");  // refused meanwhile
  device::Log log(0);
  Tprocess::CalculateParaOfSenderHandler();
  EXPECT_NE(log.Take().find("CalculateParaOfSenderInMosaicMode ===Invalid Parameter! "),
            std::string::npos);
  EXPECT_EQ(device::Fpga(0x24, 4), "80010001") << "the layout stays";
}

TEST(Layout, MoreThanTenPortsEndInTheTables) {
  device::Begin("flash fpga");
  device::PutFlash(0xB99011, "00000000000b010100");
  device::Log log(0);
  support::Trace trace;
  Tprocess::CalculateParaOfSenderHandler();
  EXPECT_EQ(log.Take(), "Error ERROR:$$PortsTopoPara$$ out of memory!!!\n");
  EXPECT_EQ(Short(trace),
            "flash R 0xb99000 x28; fpga R 0x1d7 x1; flash W 0xc20040 x15; ask; "
            "counts; flash W 0xb99000 a8");
}

TEST(Layout, LinkedPortsWithoutAStripeAreBackups) {
  device::Begin("none");
  Global().GigaPhyLinkSta = 0x0106;
  device::PutFlash(0xB99011, "00");
  device::PutFlash(0xB99016, "04030500");  // two stripes
  for (const auto& [normal, roles] : {std::pair{1, "00008000"}, {0, "00000000"}}) {
    Global().NormalBackupStatus = static_cast<std::uint8_t>(normal);
    Tprocess::CalculateParaOfSenderHandler();
    EXPECT_EQ(device::Fpga(0x18, 4), roles);
    EXPECT_EQ(device::Fpga(0x100, 1), normal == 1 ? "80" : "00");
  }
}

TEST(Layout, SubmitPlacesThePortsAtOnce) {
  const std::string sized =
      "flash R 0xb99000 x4096; fpga W 0x28 00000000; save; size 0002000000010000";
  device::Begin("flash fpga shell");
  device::PutFlash(0xB99050, std::string(2 * 640, '0').c_str());
  device::PutFlash(0xB99050, "000000000000 0202 0000 0000 0000");
  device::PutFlash(0xB99090, "000000000000 0202 0000 0001 0000");
  support::Trace trace;
  EXPECT_EQ(inprocess::Write(kRecord, inprocess::Bytes("b9")).m_ucAck, 0);
  EXPECT_EQ(Short(trace), "") << "never stored";
  EXPECT_EQ(inprocess::DrainQueue(), 1);
  EXPECT_EQ(Short(trace), sized +
                              "; fpga R 0x1d7 x1; flash W 0xc20040 x15; counts; tables; roles; "
                              "fpga W 0x18 x430; save; flash W 0xb99000 b8");
  EXPECT_EQ(device::Image(0x1EC, 4), "00020001");
  EXPECT_EQ(device::Fpga(0x24, 4), "00010001") << "the largest window";
  EXPECT_EQ(device::Flash(0xC20040, 15), "015500000000800080000000000000");

  device::PutFlash(0xB99056, "1717");  // 529 cabinets
  device::Log log(0);
  inprocess::Write(kRecord, inprocess::Bytes("b9"));
  inprocess::DrainQueue();
  EXPECT_TRUE(Short(trace).ends_with("; flash W 0xb99000 b8"));
  EXPECT_EQ(log.Take(),
            "Error === AdvCalcParaOfSenderInMosaicMode ===PortParaInvalid: total card num = "
            "541 529\n");
  EXPECT_EQ(device::Fpga(0x24, 4), "00010001");
}

TEST(Layout, WritesOfTheRecord) {
  device::Begin("flash");
  support::Trace trace;
  // The rows, columns and box number before, offset, data, ack, jobs, and what is stored at once.
  for (const auto& row : support::Rows(6, R"(
      04030500 | 0    | 0102 | 0 | 0 | flash W 0xb99000 0102
      04030500 | 50   | b9   | 0 | 0 |
      04030500 | 41c  | a1   | 0 | 0 | flash W 0xb9941c a1
      04030500 | 100  | b9   | 0 | 1 |
      04030500 | f    | 01   | 0 | 0 | flash W 0xb9900f 01
      04030500 | 1d   | 01   | 0 | 0 | flash W 0xb9901d 01
      04030500 | 1c   | 01   | 0 | 1
        | flash W 0xb9901c 01; flash W 0xb9901c 01; flash R 0xb99000 x28; flash W 0xb99000 x32
      04030500 | 16   | b9   | 0 | 1
        | flash W 0xb99016 b9; flash R 0xb99000 x28; flash W 0xb99000 x32
      04030500 | 17   | 00   | 4 | 0 | flash W 0xb99017 00; flash W 0xb99017 00; flash R 0xb99000 x28
      04030000 | 16   | 05   | 4 | 0 | flash W 0xb99016 05; flash W 0xb99016 05; flash R 0xb99000 x28
    )")) {
    SCOPED_TRACE(row[1] + " " + row[2]);
    Global().ShortCfgReadRvStatus = 1;
    device::PutFlash(0xB99016, row[0].c_str());
    const auto offset = static_cast<std::uint32_t>(std::stoul(row[1], nullptr, 16));
    auto request = inprocess::WriteRequest(kRecord + offset, inprocess::Bytes(row[2].c_str()));
    EXPECT_EQ(StubUtil::getInstance()->onDataRecvFromQMBNew(&request) == 4 ? "4" : "0", row[3]);
    EXPECT_EQ(trace.TakeLine(), row[5]);
    EXPECT_EQ(std::to_string(inprocess::DrainQueue()), row[4]);
    trace.Take();
  }
}

TEST(Layout, ReadsOfTheRecordShowTheStateAndTheFactoryLayout) {
  device::Begin("none");
  device::PutFlash(0xB99000, std::string(2 * 40, '1').c_str());
  device::PutFlash(0xC20030, "00a1a2a3");
  Global().LEDConfigStatus = 0xB8;
  const auto read = [](std::uint32_t offset, std::uint16_t length) {
    return device::Hex(inprocess::Read(kRecord + offset, length).m_data);
  };
  EXPECT_EQ(read(0, 3), "b81111");
  EXPECT_EQ(read(1, 2), "1111");
  std::string compact(2 * 38, '1');
  compact.replace(0, 2, "b8").replace(2 * 0x11, 2, "00").replace(2 * 0x16, 6, "a1a2a3");
  EXPECT_EQ(read(0, 38), compact);
}

// --- The tables behind it ----------------------------------------------------------------------

TEST(PortTables, GoBetweenClientAndFpga) {
  const std::string numbers =
      "fpga $ 0x500000 x128; fpga $ 0x501000 x128; fpga $ 0x500100 x256; fpga $ 0x502000 x128; "
      "fpga $ 0x503000 x128";
  device::Begin("fpga");
  support::Trace trace;
  // A read of so many bytes or a write, the result, bytes read, and what it reaches.
  for (const auto& row : support::Rows(5, R"(
      R 03000000 | a000 | 0 | 40960 | tables
      R 03009fff | 0002 | 5 | 0     |
      R 03100020 | 0002 | 0 | 2     | fpga R 0x500000 x128
      R 0310027f | 0002 | 0 | 2     | fpga R 0x502000 x128
      R 03100020 | 0003 | 0 | 3     | all
      R 031002ff | 0002 | 5 | 0     |
      W 03009ff0 | 11223344 | 0 | 0 | fpga W 0x609ff0 11223344
      W 03009ffe | 55667788 | 0 | 0 |
      W 03100021 | a1a2     | 0 | 0 | fpga W 0x500000 x128
      W 03100280 | a1       | 0 | 0 | fpga W 0x503000 x128
      W 03100022 | a3a4a5   | 0 | 0 | all
      W 031002fe | a3a4a5   | 5 | 0 |
    )")) {
    SCOPED_TRACE(row[0] + " " + row[1]);
    const bool read = row[0][0] == 'R';
    const auto address = static_cast<std::uint32_t>(std::stoul(row[0].substr(2), nullptr, 16));
    auto request = read ? inprocess::ReadRequest(
                              address, static_cast<std::uint16_t>(std::stoul(row[1], nullptr, 16)))
                        : inprocess::WriteRequest(address, inprocess::Bytes(row[1].c_str()));
    if (read) request.proto.m_data.clear();
    EXPECT_EQ(std::to_string(StubUtil::getInstance()->onDataRecvFromQMBNew(&request)), row[2]);
    if (read) {
      EXPECT_EQ(std::to_string(request.proto.m_data.size()), row[3]);
    }
    inprocess::DrainQueue();
    const std::string lines = trace.TakeLine();
    if (row[4] == "tables") {
      EXPECT_EQ(support::Count(lines + "\n", "fpga R 0x600000 x1024"), 1);
    } else if (row[4] == "all") {
      EXPECT_EQ(lines, std::regex_replace(numbers, std::regex("\\$"), read ? "R" : "W"));
    } else {
      EXPECT_EQ(lines, row[4]);
    }
  }
  EXPECT_EQ(device::Hex(PortsTopoPara.snapshot<4>(kPositionSize - 4)), "00005566")
      << "what fits, in memory alone";
  EXPECT_EQ(device::Fpga(0x500020, 5), "00a1a3a4a5");
}

TEST(PortTables, WriteTestOfTheBusUndoesNoWrite) {
  device::Begin("none");
  auto test = std::async(std::launch::async, [] { inprocess::Read(0x030001EF, 4); });
  std::uint8_t value = 0;
  do {
    WritePositions(1, {&++value, 1});
    ASSERT_EQ(device::Fpga(0x600001, 1), device::Hex({&value, 1}));
  } while (test.wait_for(std::chrono::seconds(0)) != std::future_status::ready);
}

}  // namespace
