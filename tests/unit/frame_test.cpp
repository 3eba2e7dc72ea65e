// Frames pinned against literal bytes, both ways, and what the front end makes of faulty ones.
#include <gtest/gtest.h>

#include <array>

#include "stub/mcuqmbthread.h"
#include "support/inprocess.h"

namespace {

using namespace ZEPH_MCUC;
using inprocess::Bytes;

// A request on the wire, what the handler appends to it, and the reply on the wire.
struct Exchange {
  const char* name;
  const char* request;
  const char* appended;
  const char* reply;
};

constexpr Exchange kExchanges[] = {
    {"a read", "55AA 00000000 0000 0000 0000 18000002 0400 7355", "11223344",
     "AA55 00000000 0000 0000 0000 18000002 0400 11223344 1D56"},
    {"a read that yields nothing", "55AA 00000000 0000 0000 0000 00000100 0100 5755", "",
     "AA55 00000000 0000 0000 0000 00000100 0000 5655"},
    {"tags the other way round", "AA55 00000000 0000 0000 0000 00000100 0100 5755", "",
     "55AA 00000000 0000 0000 0000 00000100 0000 5655"},
    {"all other fields come back as they are", "55AA 00010203 0405 0607 0009 08090A0B 0C0D B955",
     "C1C2C3", "AA55 00010203 0405 0607 0009 08090A0B 0300 C1C2C3 E957"},
    {"a write", "55AA 00000000 0000 0000 0100 341200F0 0300 C1C2C3 D558", "",
     "AA55 00000000 0000 0000 0100 341200F0 0000 8C56"},
    {"a write with more behind its data", "55AA 00000000 0000 0000 01FF 341200F0 0200 C1C2C3 D359",
     "", "AA55 00000000 0000 0000 01FF 341200F0 0200 C1C2 1059"},
    {"a write that wants its data back", "55AA 00000000 0000 0000 01FF 341200F0 0300 C1C2C3 D459",
     "", "AA55 00000000 0000 0000 01FF 341200F0 0300 C1C2C3 D459"},
};

TEST(Frame, RequestsBecomeRepliesByteForByte) {
  for (const Exchange& exchange : kExchanges) {
    SCOPED_TRACE(exchange.name);
    const auto request = Bytes(exchange.request);
    const auto size = static_cast<int32_t>(request.size());
    EXPECT_TRUE(MCUCMsg::Checkout(request.data(), size));
    ThirdProtoMCUCMsg message;
    ASSERT_EQ(message.Decode(request.data(), size), 0);
    for (const uint8_t byte : Bytes(exchange.appended)) message.m_data.push_back(byte);
    std::array<uint8_t, 64> buffer{};
    const int32_t length = message.Encode(buffer.data(), buffer.size());
    EXPECT_EQ(std::vector<uint8_t>(buffer.begin(), buffer.begin() + length), Bytes(exchange.reply));
  }
}

TEST(Frame, SumCoversEachByteButTheTag) {
  auto frame = Bytes(kExchanges[4].request);
  for (std::size_t i = 0; i < frame.size(); ++i) {
    frame[i] ^= 0x10;
    EXPECT_EQ(MCUCMsg::Checkout(frame.data(), static_cast<int32_t>(frame.size())), i < 2) << i;
    frame[i] ^= 0x10;
  }
}

TEST(FrontEnd, KnowsEachPeerThatAskedOnce) {
  McuQMBThread front([](QMB_proto3rd*) { return 0; }, [] { return false; });
  const auto ask = [&](uint32_t peer, const std::vector<uint8_t>& frame) {
    const ihead_t head{.ui_id = peer};
    const Flabel_t label{{LABEL_MSG_NET, LABEL_MSG}, static_cast<int32_t>(frame.size())};
    EXPECT_EQ(front.dealDataBlockNew(&head, &label, frame.data()), 0);
  };
  for (const uint32_t peer : {0x7F0001U, 0x0A3900U, 0x7F0002U, 0x7F0001U}) {
    ask(peer, Bytes(kExchanges[0].request));
  }
  ask(0x7F0003, Bytes("55AA"));  // asked for nothing
  EXPECT_EQ(front.SeenPeers(), (std::vector<uint32_t>{0x0A3900, 0x7F0001, 0x7F0002}));
  EXPECT_EQ(front.dealDataBlockNew(nullptr, nullptr, nullptr), static_cast<int32_t>(0x80005004));
}

}  // namespace
