// The devices behind the ports: who takes a packet, what cards answer, the file that shows them.
#include <gtest/gtest.h>
#include <platform/fpga.h>
#include <platform/recvcard.h>
#include <platform/system.h>

#include <array>
#include <cstring>

#include "board/cardfile.h"
#include "board/cards.h"
#include "board/cells.h"
#include "board/files.h"
#include "board/packets.h"
#include "support/board_kit.h"

namespace board {
namespace {

using board_kit::Configure;
using board_kit::Named;
using board_kit::Put;
using board_kit::TraceLines;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint32_t kSizeRegister = 0x02000017;
constexpr std::uint32_t kBrightness = 0x02000001;

RECVCARD_MESG_T Head(int type, int port, int board, int code, std::uint32_t first,
                     const Bytes& data, std::size_t length) {
  RECVCARD_MESG_T head{};
  head.DeviceType = static_cast<std::uint8_t>(type);
  head.ProtAddr = static_cast<std::uint8_t>(port);
  head.BoardAddr = static_cast<std::uint16_t>(board);
  head.code = static_cast<std::uint8_t>(code);
  head.RegisterAddr = first;
  head.length = static_cast<std::uint16_t>(length);
  unsigned sum = static_cast<unsigned>(type + port + (board & 0xFF) + (board >> 8) + code);
  for (int i = 0; i < 4; ++i) sum += first >> (8 * i) & 0xFF;
  sum += (length & 0xFF) + (length >> 8);
  for (const auto byte : data) sum += byte;
  head.checksum = static_cast<std::uint16_t>(sum);
  return head;
}

int Write(int type, int port, int board, std::uint32_t first, const Bytes& data) {
  auto head = Head(type, port, board, 1, first, data, data.size());
  return WriteFPGAToRecvCard(1, &head, static_cast<std::uint16_t>(port), data.data());
}

// What the card answers; empty where it doesn't.
Bytes Read(int type, int port, int board, std::uint32_t first, std::size_t length) {
  Bytes data(length, 0xEE);
  auto head = Head(type, port, board, 0, first, {}, length);
  const int result = ReadFPGAformRecvCard(1, &head, static_cast<std::uint16_t>(port), data.data());
  if (result != 0) {
    EXPECT_EQ(data, Bytes(length, 0xEE)) << "a failed read moves nothing";
    return {};
  }
  return data;
}

std::string Cards() { return *ReadWhole(Named() / "cards"); }

// The record of a card, by its place in the file.
Bytes Record(std::size_t index) {
  const auto text = Cards().substr(16 + 32 * index, 32);
  return {text.begin(), text.end()};
}

TEST(BoardCards, FileListsThemInOrder) {
  Configure(
      "card.width=300\ncard.height=5\nport.0.cards=2\nport.0.multi=1\nport.1.cards=0\n"
      "port.3.cards=1\nport.3.boxes=1\nport.15.launchers=1\n");
  platform::Initialize();
  const auto file = Cards();
  ASSERT_EQ(file.size(), 16U + 32 * 6);
  EXPECT_EQ(file.substr(0, 16), std::string("QVCARDS1\x06\0\0\0\x20\0\0\0", 16));
  const Bytes rest = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 1, 0, 0, 0, 0,
                      0,    0,    0,    0,    0,    0, 0, 0, 0, 0, 0, 0};
  const Bytes heads[] = {{1, 0, 0, 0, 0x2C, 1, 5, 0}, {1, 0, 1, 0, 0x2C, 1, 5, 0},
                         {1, 3, 0, 0, 0x2C, 1, 5, 0}, {2, 0, 0, 0, 0, 0, 0, 0},
                         {3, 3, 0, 0, 0, 0, 0, 0},    {4, 15, 0, 0, 0, 0, 0, 0}};
  for (std::size_t i = 0; i < std::size(heads); ++i) {
    Bytes wanted = heads[i];
    wanted.insert(wanted.end(), rest.begin(), rest.end());
    EXPECT_EQ(Record(i), wanted) << i;
  }
}

TEST(BoardCards, AddressChoosesWhoTakesAWrite) {
  Configure("port.0.cards=2\nport.1.cards=1\nport.0.multi=1\nport.2.multi=1\n");
  const struct {
    int type, port, board;
    const char* takers;  // of: receiving 0/0, 0/1, 1/0, multi 0/0, 2/0
  } kCases[] = {
      {1, 0, 0, "x...."},         {1, 0, 1, ".x..."},         {1, 0, 2, "....."},
      {1, 0, 0xFFFF, "xx..."},    {1, 0xFF, 0, "x.x.."},      {1, 0xFF, 0xFFFF, "xxx.."},
      {2, 0xFF, 0xFFFF, "...xx"}, {2, 2, 0, "....x"},         {3, 0xFF, 0xFFFF, "....."},
      {0, 0xFF, 0xFFFF, "....."}, {5, 0xFF, 0xFFFF, "....."}, {1, 16, 0, "....."},
  };
  std::uint8_t value = 0;
  for (const auto& c : kCases) {
    ++value;
    EXPECT_EQ(Write(c.type, c.port, c.board, 0x1234, {value}), 0) << "also to nobody";
    std::string takers;
    for (const auto& [type, port, board] :
         {std::tuple{1, 0, 0}, {1, 0, 1}, {1, 1, 0}, {2, 0, 0}, {2, 2, 0}}) {
      takers += Read(type, port, board, 0x1234, 1) == Bytes{value} ? 'x' : '.';
    }
    EXPECT_EQ(takers, c.takers) << c.type << " " << c.port << " " << c.board;
  }
  constexpr std::array<int, 3> kNoCard[] = {{1, 0, 2},      {1, 3, 0}, {1, 0xFF, 0},
                                            {1, 0, 0xFFFF}, {4, 0, 0}, {1, 16, 0}};
  for (const auto& [type, port, board] : kNoCard) {
    EXPECT_EQ(Read(type, port, board, 0, 1), Bytes{}) << "no single card there";
  }
}

TEST(BoardCards, RemembersBytesAndShowsFieldsInTheFile) {
  Configure("card.width=300\ncard.height=2\nport.0.cards=1\nport.0.multi=1\nport.1.cards=0\n");
  EXPECT_EQ(Read(1, 0, 0, kSizeRegister - 1, 6), (Bytes{0, 0x2C, 1, 2, 0, 0}));
  EXPECT_EQ(Read(2, 0, 0, kSizeRegister, 4), (Bytes{0, 0, 0, 0})) << "no receiving card";
  ASSERT_EQ(Write(1, 0, 0, 0x02000000, {9, 10, 11, 12, 13, 14, 15}), 0);
  EXPECT_EQ(Read(1, 0, 0, 0x02000000, 7), (Bytes{9, 10, 11, 12, 13, 14, 15}));
  ASSERT_EQ(Write(1, 0, 0, 0x02000100, {0xAA}), 0);
  ASSERT_EQ(Write(1, 0, 0, 0x01000087, {1, 5}), 0);
  ASSERT_EQ(Write(1, 0, 0, 0xFFFFFFFF, {7, 8}), 0) << "registers run on at the end";
  EXPECT_EQ(Read(1, 0, 0, 0, 1), Bytes{8});
  const Bytes wanted = {1, 0, 0, 0, 0x2C, 1, 2, 0, 10, 11, 12, 13, 14, 0xAA, 5, 1, 7, 0, 0, 0};
  const auto record = Record(0);
  EXPECT_EQ(Bytes(record.begin(), record.begin() + 20), wanted) << "seven packets";

  auto* const file = MapShared(Named() / "cards", Cards().size());
  file[16 + card_record::kSize] = std::byte{77};
  EXPECT_EQ(Read(1, 0, 0, kSizeRegister, 2), (Bytes{77, 1})) << "changed from outside";
  file[16 + card_record::kTakesPart] = std::byte{0};
  EXPECT_EQ(Read(1, 0, 0, kSizeRegister, 2), Bytes{});
  EXPECT_EQ(Write(1, 0, 0, kBrightness, {1}), 0);
  EXPECT_EQ(Record(0)[card_record::kBrightness], 10);
  EXPECT_EQ(Record(0)[card_record::kPackets], 8);
}

TEST(BoardCards, FileThatFitsIsKeptAndAnotherMadeAnew) {
  Configure("port.0.cards=1\nport.0.multi=0\nport.1.cards=1\n");
  Settings settings;
  settings.devices = {};
  settings.devices[0][0] = settings.devices[1][0] = 1;
  std::string file = NewCardFile(settings);
  file[16 + card_record::kBrightness] = 42;
  file[16 + card_record::kSize] = 99;
  Put("cards", file);
  Put("fpga/1.mem", "");  // an old memory with no link
  platform::Initialize();
  EXPECT_TRUE(Cards() == file);
  EXPECT_EQ(Read(1, 0, 0, kBrightness, 1), Bytes{42});
  std::uint8_t links = 0xEE;
  LoadCells(1, 0x1F, 1, &links);
  EXPECT_EQ(links, 0);
}

TEST(BoardCards, FileOfOtherCardsIsMadeAnewWithTheLinks) {
  Configure("port.0.cards=0\nport.0.multi=1\nport.1.cards=0\nport.5.boxes=2\n");
  Put("cards", NewCardFile(Settings{}));
  const std::uint8_t stale = 0x0F;
  StoreCells(1, 0x1F, 1, &stale);
  platform::Initialize();
  EXPECT_EQ(Cards().size(), 16U + 3 * 32);
  std::uint8_t links[4] = {};
  LoadCells(1, 0xF05100, 4, links);
  EXPECT_EQ(links[0] | links[1] << 8, 0x0201);
  LoadCells(1, 0x1F, 1, links);
  EXPECT_EQ(links[0], 1);
}

TEST(BoardCards, LightSensorAnswersItsRequest) {
  const Bytes request = {3, 0, 0, 0, 0x55, 0xAA, 1, 2, 0x80, 0xFF, 0x81};
  EXPECT_EQ(Read(2, 0, 0, 0x06000000, 5), Bytes(5, 0)) << "nobody asked";
  ASSERT_EQ(Write(2, 0, 0, 0x06000000, request), 0);
  const std::pair<const char*, Bytes> kCases[] = {
      {nullptr, {1, 2, 0x80, 0, 0}},  {"1025\n", {1, 2, 0x82, 0, 0}},
      {"511", {1, 2, 0x80, 0xFF, 0}}, {"65535\n", {1, 2, 0xFF, 0xFF, 0}},
      {"65536", {1, 2, 0x80, 0, 0}},  {"fail\n", {1, 2, 0, 0, 0}},
  };
  for (const auto& [lux, answer] : kCases) {
    if (lux != nullptr) Put("sensors/lux", lux);
    EXPECT_EQ(Read(2, 0, 0, 0x06000000, 5), answer) << (lux != nullptr ? lux : "none");
  }
  EXPECT_EQ(Read(2, 0, 0, 0x06000000, 4), (Bytes{3, 0, 0, 0})) << "another length is memory";
  ASSERT_EQ(Write(1, 0, 0, 0x06000000, request), 0);
  EXPECT_EQ(Read(1, 0, 0, 0x06000000, 5), (Bytes{3, 0, 0, 0, 0x55})) << "a receiving card has none";
}

TEST(BoardCards, RefusesAWrongPacketAndTracesAll) {
  Configure("trace = card\nport.0.cards=1\nport.0.multi=0\nport.1.cards=0\n");
  platform::Initialize();
  Bytes data = {1, 2};
  auto head = Head(1, 0, 0, 1, kBrightness, data, 2);
  EXPECT_EQ(WriteFPGAToRecvCard(0, &head, 0, data.data()), -1) << "another FPGA";
  EXPECT_EQ(WriteFPGAToRecvCard(1, &head, 1, data.data()), -1) << "another port";
  ++head.checksum;
  EXPECT_EQ(WriteFPGAToRecvCard(1, &head, 0, data.data()), -1);
  --head.checksum;
  EXPECT_EQ(ReadFPGAformRecvCard(1, &head, 0, data.data()), -1) << "a write's code";
  EXPECT_EQ(Record(0)[card_record::kBrightness], 0xFF);
  EXPECT_EQ(WriteFPGAToRecvCard(1, &head, 0, data.data()), 0);
  Read(1, 0, 0, kBrightness, 2);
  Read(1, 7, 0, kBrightness, 2);
  const auto lines = TraceLines();
  ASSERT_EQ(lines.size(), 7U);
  EXPECT_EQ(lines[0], "card W 1 0 0 0x02000001 2 -1 - 0x000a");
  EXPECT_EQ(lines[4], "card W 1 0 0 0x02000001 2 0 0102 0x000a");
  EXPECT_EQ(lines[5], "card R 1 0 0 0x02000001 2 0 0102 0x0006");
  EXPECT_EQ(lines[6], "card R 1 7 0 0x02000001 2 -1 - 0x000d");
}

void Cell(std::uint32_t address, const Bytes& data) {
  ASSERT_EQ(WriteFPGABlock(1, address, static_cast<std::uint32_t>(data.size()), data.data()), 0);
}

// A packet of colours for all cards of a port.
Bytes ColourPacket(std::uint8_t port, std::uint8_t red) {
  Bytes packet = {1, port, 0xFF, 0xFF, 1, 0, 2, 0, 0, 2, 4, 0, red, 2, 3, 4};
  const auto sum = PacketSum(packet);
  packet.push_back(static_cast<std::uint8_t>(sum));
  packet.push_back(static_cast<std::uint8_t>(sum >> 8));
  return packet;
}

TEST(BoardPackets, LargeBufferSendsOnAnOddControlByte) {
  Configure("trace = card\nport.0.cards=0\nport.0.multi=0\nport.1.cards=0\nport.2.cards=1\n");
  Cell(0x100000, {4});
  Cell(0x300000, ColourPacket(2, 1));
  EXPECT_TRUE(TraceLines().empty()) << "prepared, not sent";
  Cell(0x100000, {5});
  EXPECT_EQ(TraceLines().back(), "card P 1 2 65535 0x02000002 4 0 01020304 0x0214");
  EXPECT_EQ(Record(0)[card_record::kColours], 1);
  EXPECT_EQ(Record(0)[card_record::kPackets], 1);

  auto wrong = ColourPacket(2, 9);
  ++wrong.back();
  Cell(0x300000, wrong);
  Cell(0x100000, {5});
  EXPECT_EQ(TraceLines().back(), "card P 1 2 65535 0x02000002 4 -1 - 0x031c");
  Cell(0x300000, ColourPacket(2, 9));
  Cell(0x100000, {33});
  EXPECT_EQ(TraceLines().back(), "card P 1 16 65535 0x02000002 4 -1 - 0x021c");
  EXPECT_EQ(Record(0)[card_record::kColours], 1);
  Cell(0xFFFFF, {0, 5});  // the control byte within a longer write; addresses run modulo 32 MiB
  EXPECT_EQ(Record(0)[card_record::kColours], 9);
  Cell(0x2100000, {5});
  EXPECT_EQ(TraceLines().size(), 5U);
  std::uint8_t five = 5;
  EXPECT_EQ(WriteFPGABlock(0, 0x100000, 1, &five), 0);
  EXPECT_EQ(TraceLines().size(), 5U) << "no cards behind the other FPGA";
}

TEST(BoardPackets, SmallBufferSendsOnceDownThePortSelectedBefore) {
  Configure("trace = card\nport.0.cards=0\nport.0.multi=0\nport.1.cards=1\nport.3.cards=1\n");
  Cell(0x100, {0});
  EXPECT_TRUE(TraceLines().empty()) << "nothing is loaded";
  Cell(0x100, {6});
  Cell(0x400, ColourPacket(3, 50));
  Cell(0x100, {2});
  Cell(0x100, {0, 0});
  EXPECT_TRUE(TraceLines().empty()) << "no single 0";
  Cell(0x100, {0});
  EXPECT_EQ(TraceLines().back(), "card P 1 3 65535 0x02000002 4 0 32020304 0x0246");
  EXPECT_EQ(Record(1)[card_record::kColours], 50);
  Cell(0x100, {0});
  EXPECT_EQ(TraceLines().size(), 1U) << "once";

  auto short_one = ColourPacket(0, 1);
  short_one.pop_back();
  Cell(0x400, short_one);
  Cell(0x100, {0});
  EXPECT_EQ(TraceLines().back(), "card P 1 0 65535 0x02000002 4 -1 - 0x0012");
  Cell(0x400, {1, 2});
  Cell(0x100, {0});
  EXPECT_EQ(TraceLines().back(), "card P 1 0 0 0x00000000 0 -1 - 0x0000");
  std::uint8_t cells[3] = {};
  LoadCells(1, 0x400, 3, cells);
  EXPECT_EQ(cells[1], 2) << "the cells keep what is written";
}

}  // namespace
}  // namespace board
